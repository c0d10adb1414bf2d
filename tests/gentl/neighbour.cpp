// A library that a producer needs and that only lies beside it.
#ifdef _WIN32
#define NEIGHBOUR_EXPORT extern "C" __declspec(dllexport)
#else
#define NEIGHBOUR_EXPORT extern "C" __attribute__((visibility("default")))
#endif

NEIGHBOUR_EXPORT int neighbourAnswer() {
  return 42;
}

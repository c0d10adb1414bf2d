// A library without any of the entry points.
namespace {
int nothing = 0;
}
int* somethingElse() {
  return &nothing;
}

// A library that is named like a producer and exports nothing that a producer must have.
extern "C" int hollowProducer() {
  return 0;
}

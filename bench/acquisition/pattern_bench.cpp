// How many bytes a second the scan's check of the test pattern goes through, with the threads that it takes for itself.
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "pattern_check.h"
#include "report.h"

namespace {

/** Images one after the other in memory, more of them than caches hold. */
class Images {
 public:
  Images(std::uint32_t width, std::uint32_t height, std::uint32_t channels)
      : width_(width),
        height_(height),
        channels_(channels),
        size_(std::size_t{width} * height * channels),
        bytes_(std::max(kMemory / size_, std::size_t{2}) * size_) {
    for (std::size_t image = 0; image < count(); ++image) {
      for (std::size_t i = 0; i < size_; ++i) {
        bytes_[image * size_ + i] = static_cast<std::uint8_t>(i / channels % width + image);
      }
    }
  }

  std::size_t count() const { return bytes_.size() / size_; }
  double gigabytes() const { return static_cast<double>(bytes_.size()) / 1e9; }

  void check() const {
    for (std::size_t image = 0; image < count(); ++image) {
      const OVI::PatternImage seen{bytes_.data() + image * size_, size_, width_, height_, channels_};
      if (!OVI::matchesTestPattern(seen, static_cast<std::uint8_t>(image), OVI::patternBands())) {
        std::fprintf(stderr, "pattern_bench: image %zu does not match\n", image);
        std::exit(1);
      }
    }
  }

 private:
  static constexpr std::size_t kMemory = std::size_t{200} << 20;

  std::uint32_t width_;
  std::uint32_t height_;
  std::uint32_t channels_;
  std::size_t size_;
  std::vector<std::uint8_t> bytes_;
};

/** Of the best round. */
double gigabytesPerSecond(const Images& images) {
  constexpr int kRounds = 20;
  double best = 0;
  for (int round = 0; round < kRounds; ++round) {
    const auto begin = std::chrono::steady_clock::now();
    images.check();
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
    best = std::max(best, images.gigabytes() / time.count());
  }
  return best;
}

}  // namespace

int main() {
  bench::Report report("pattern_bench");
  const std::string threads = std::to_string(OVI::patternBands()) + " threads";
  report.atLeast("pattern check of 0.3 MB images, GB/s", gigabytesPerSecond({640, 480, 1}), 1, threads);
  report.atLeast("pattern check of 1.3 MB images, GB/s", gigabytesPerSecond({1280, 1024, 1}), 1, threads);
  report.atLeast("pattern check of 15 MB RGB8 images, GB/s", gigabytesPerSecond({2448, 2048, 3}), 1, threads);
  return report.result();
}

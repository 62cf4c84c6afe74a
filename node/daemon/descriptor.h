#pragma once
// A file descriptor that closes itself.

#include <unistd.h>

#include <utility>

class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { reset(); }
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }

  explicit operator bool() const { return number_ >= 0; }
  int get() const { return number_; }
  void reset() {
    if (number_ >= 0) close(std::exchange(number_, -1));
  }

 private:
  int number_ = -1;
};

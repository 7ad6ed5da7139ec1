// set.h: TSet<E>, the platform's "set of" an enumeration (common platform layer).
// Bit n stands for the ordinal n, so a set of up to 64 values fits one UInt64; the bits are what
// reflection reads and writes, and what a set's integer form means in text.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <type_traits>

namespace vn {

template <class E>
class TSet {
  static_assert(std::is_enum_v<E>, "TSet is a set of an enumeration");

 public:
  using Element = E;

  constexpr TSet() noexcept = default;
  constexpr TSet(std::initializer_list<E> AValues) noexcept {
    for (E v : AValues) FBits |= Bit(v);
  }
  /// The set whose bits are ABits (bit n: ordinal n).
  static constexpr TSet FromBits(uint64_t ABits) noexcept {
    TSet s;
    s.FBits = ABits;
    return s;
  }

  constexpr uint64_t Bits() const noexcept { return FBits; }
  constexpr bool Contains(E AValue) const noexcept { return (FBits & Bit(AValue)) != 0; }
  constexpr bool IsEmpty() const noexcept { return FBits == 0; }
  constexpr TSet& Include(E AValue) noexcept {
    FBits |= Bit(AValue);
    return *this;
  }
  constexpr TSet& Exclude(E AValue) noexcept {
    FBits &= ~Bit(AValue);
    return *this;
  }

  /// Union, difference and intersection, as the platform's +, - and *.
  friend constexpr TSet operator+(TSet A, TSet B) noexcept { return FromBits(A.FBits | B.FBits); }
  friend constexpr TSet operator-(TSet A, TSet B) noexcept { return FromBits(A.FBits & ~B.FBits); }
  friend constexpr TSet operator*(TSet A, TSet B) noexcept { return FromBits(A.FBits & B.FBits); }
  friend constexpr bool operator==(TSet A, TSet B) noexcept = default;
  /// A is a subset of B, as the platform's <=.
  friend constexpr bool operator<=(TSet A, TSet B) noexcept { return (A.FBits & ~B.FBits) == 0; }

 private:
  static constexpr uint64_t Bit(E AValue) noexcept {
    auto ord = static_cast<uint64_t>(static_cast<std::underlying_type_t<E>>(AValue));
    return ord < 64 ? uint64_t{1} << ord : 0;
  }
  uint64_t FBits = 0;
};

}  // namespace vn

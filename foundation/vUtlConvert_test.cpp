#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "foundation/TestFailure.h"
#include "foundation/UtlExcept.h"
#include "foundation/vUtl.h"

namespace {

template <class T>
T load(unsigned char const* p) {
  T v;
  std::memcpy(&v, p, sizeof v);
  return v;
}

uint32_t bitsOf(float f) {
  uint32_t b;
  std::memcpy(&b, &f, 4);
  return b;
}

template <class T>
std::vector<unsigned char> bytesOf(std::vector<T> const& v) {
  std::vector<unsigned char> b(v.size() * sizeof(T));
  if (!v.empty()) std::memcpy(b.data(), v.data(), b.size());
  return b;
}

template <class T>
std::vector<unsigned char> swappedBytesOf(std::vector<T> const& v) {
  std::vector<unsigned char> b = bytesOf(v);
  for (std::size_t i = 0; i < v.size(); ++i)
    for (std::size_t k = 0; k < sizeof(T) / 2; ++k) std::swap(b[i * sizeof(T) + k], b[i * sizeof(T) + sizeof(T) - 1 - k]);
  return b;
}

template <class D, class S>
std::vector<D> convert(std::vector<S> const& in, int sType, int dType, int flags = 0) {
  std::vector<D> out(in.size());
  vUtl::copyConvert(in.data(), sType, out.data(), dType, in.size(), flags);
  return out;
}

uint64_t lcg(uint64_t& state) {
  state = state * 6364136223846793005ULL + 1442695040888963407ULL;
  return state;
}

// Halves away from zero, saturation at the limits, NaN to zero.
TEST(vUtlNint, RoundsSaturatesAndMapsNaNToZero) {
  EXPECT_EQ(0, vUtl::nint(0.49999999999999994));  // naive x + 0.5 gives 1
  EXPECT_EQ(4503599627370496LL, vUtl::nint64(4503599627370495.5));  // 2^52 - 0.5
  EXPECT_EQ(-3LL, vUtl::nint64(-2.5));
  double const inf = std::numeric_limits<double>::infinity();
  double const nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(INT32_MAX, vUtl::nint(inf));
  EXPECT_EQ(0, vUtl::nint(nan));
  EXPECT_EQ(INT32_MAX, vUtl::nint(2147483646.5));  // rounds up to the limit itself
  EXPECT_EQ(INT32_MIN, vUtl::nint(-2147483648.49));
  EXPECT_EQ(INT64_MAX, vUtl::nint64(9.3e18));
  EXPECT_EQ(0LL, vUtl::nint64(nan));
}

TEST(vUtlCopyConvert, ToIntegersByLowBitsRoundingTruncationOrSaturation) {
  std::vector<int64_t> const wide = {0x123456789LL, -1, 5, INT64_MIN, 0x7FFFFFFFLL + 1};
  EXPECT_EQ((std::vector<int32_t>{0x23456789, -1, 5, 0, INT32_MIN}), convert<int32_t>(wide, vINT64, vINT32));
  EXPECT_EQ((std::vector<int32_t>{INT32_MAX, -1, 5, INT32_MIN, INT32_MAX}),
            convert<int32_t>(wide, vINT64, vINT32, vUtl::ConvertClip));

  std::vector<int16_t> const small = {-5, 300, 255, 0, -32768};
  EXPECT_EQ((std::vector<uint8_t>{251, 44, 255, 0, 0}), convert<uint8_t>(small, vINT16, vUINT8));
  EXPECT_EQ((std::vector<uint8_t>{0, 255, 255, 0, 0}), convert<uint8_t>(small, vINT16, vUINT8, vUtl::ConvertClip));
  // vCHAR8 is a signed byte and vBOOL8 an unsigned one.
  EXPECT_EQ((std::vector<int8_t>{-5, 127, 127, 0, -128}), convert<int8_t>(small, vINT16, vCHAR8, vUtl::ConvertClip));
  EXPECT_EQ((std::vector<uint8_t>{0, 255, 255, 0, 0}), convert<uint8_t>(small, vINT16, vBOOL8, vUtl::ConvertClip));

  std::vector<uint64_t> const huge = {UINT64_MAX, 7};
  EXPECT_EQ((std::vector<int64_t>{INT64_MAX, 7}), convert<int64_t>(huge, vUINT64, vINT64, vUtl::ConvertClip));
  EXPECT_EQ((std::vector<uint64_t>{UINT64_MAX, 70000}), convert<uint64_t>(std::vector<int32_t>{-1, 70000}, vINT32, vUINT64));
  std::vector<float> const f = {2.5f, -2.5f, 2.9f, -2.9f, 0.49999997f, 1e20f, -1e20f,
                                std::numeric_limits<float>::quiet_NaN()};
  EXPECT_EQ((std::vector<int32_t>{3, -3, 3, -3, 0, INT32_MAX, INT32_MIN, 0}),
            convert<int32_t>(f, vFLOAT32, vINT32, vUtl::ConvertClip));
  EXPECT_EQ((std::vector<int32_t>{2, -2, 2, -2, 0, INT32_MAX, INT32_MIN, 0}),
            convert<int32_t>(f, vFLOAT32, vINT32, vUtl::ConvertClip | vUtl::ConvertTruncate));
  // Without clipping a narrower target keeps the low bits of the saturated 64-bit value, as integers do.
  EXPECT_EQ((std::vector<int32_t>{3, -3, 3, -3, 0, -1, 0, 0}), convert<int32_t>(f, vFLOAT32, vINT32));
  EXPECT_EQ((std::vector<int64_t>{3, -3, 3, -3, 0, INT64_MAX, INT64_MIN, 0}), convert<int64_t>(f, vFLOAT32, vINT64));

  std::vector<double> const d = {-0.4, -0.6, 1.8e19, 2e19, 4294967295.4, 4294967295.5, -1.0};
  EXPECT_EQ((std::vector<uint64_t>{0, 0, 18000000000000000000ULL, UINT64_MAX, 4294967295ULL, 4294967296ULL, 0}),
            convert<uint64_t>(d, vFLOAT64, vUINT64));
  EXPECT_EQ((std::vector<uint32_t>{0, 0, UINT32_MAX, UINT32_MAX, UINT32_MAX, UINT32_MAX, 0}),
            convert<uint32_t>(d, vFLOAT64, vUINT32, vUtl::ConvertClip));
  // 2^31 - 128 is the largest float below 2^31: it converts, 2^31 saturates.
  std::vector<float> const edge = {2147483520.0f, 2147483648.0f, -2147483648.0f, -2147483904.0f};
  EXPECT_EQ((std::vector<int32_t>{2147483520, INT32_MAX, INT32_MIN, INT32_MIN}),
            convert<int32_t>(edge, vFLOAT32, vINT32, vUtl::ConvertClip));
}

TEST(vUtlCopyConvert, BetweenFloatsFromIntegersAndRefusals) {
  double const inf = std::numeric_limits<double>::infinity();
  std::vector<double> const d = {1e300, -1e300, 1.5, inf, 3.4028235e38, std::numeric_limits<double>::quiet_NaN()};
  std::vector<float> plain = convert<float>(d, vFLOAT64, vFLOAT32);
  EXPECT_EQ(std::numeric_limits<float>::infinity(), plain[0]);
  EXPECT_EQ(1.5f, plain[2]);
  EXPECT_EQ(std::numeric_limits<float>::max(), plain[4]);
  EXPECT_TRUE(std::isnan(plain[5]));
  std::vector<float> clipped = convert<float>(d, vFLOAT64, vFLOAT32, vUtl::ConvertClip);
  EXPECT_EQ(std::numeric_limits<float>::max(), clipped[0]);
  EXPECT_EQ(std::numeric_limits<float>::max(), clipped[3]);
  EXPECT_TRUE(std::isnan(clipped[5]));

  std::vector<int32_t> const i = {16777217, -7, 0};
  EXPECT_EQ((std::vector<float>{16777216.0f, -7.0f, 0.0f}), convert<float>(i, vINT32, vFLOAT32));
  EXPECT_EQ((std::vector<double>{1.5, -2.0}), convert<double>(std::vector<float>{1.5f, -2.0f}, vFLOAT32, vFLOAT64));
  std::vector<unsigned char> const shorts = swappedBytesOf(std::vector<int16_t>{-2, 300});
  std::vector<float> f(2);
  vUtl::copyConvert(shorts.data(), vINT16, f.data(), vFLOAT32, 2, vUtl::ConvertSwapSource);
  EXPECT_EQ((std::vector<float>{-2.0f, 300.0f}), f);
  std::vector<unsigned char> buffer(64);
  EXPECT_EQ("vUtl::copyConvert(): Cannot convert vSTRING data to vFLOAT32.",
            fatalText([&] { vUtl::copyConvert(buffer.data(), vSTRING, buffer.data() + 32, vFLOAT32, 1); }));
  EXPECT_EQ("vUtl::copyConvert(): Cannot convert vINT32 data to vIBMFLOAT32.",
            fatalText([&] { vUtl::copyConvert(buffer.data(), vINT32, buffer.data() + 32, vIBMFLOAT32, 1); }));
  EXPECT_EQ("vUtl::copyConvert(): Cannot convert vINT16 data to vINT32 in place.",
            fatalText([&] { vUtl::copyConvert(buffer.data(), vINT16, buffer.data(), vINT32, 4); }));
  // Nothing to do is no error for supported types, and touches nothing.
  vUtl::copyConvert(nullptr, vINT16, nullptr, vFLOAT32, 0);
}

// The fused kernels agree with the value-by-value rule at every length around the vector widths, unaligned too.
TEST(vUtlCopyConvert, EveryLengthAlignmentAndSwappedSourceAcrossTheBlock) {
  uint64_t state = 7;
  for (std::size_t n : {0u, 1u, 7u, 8u, 9u, 17u, 33u, 100u}) {
    for (std::size_t offset : {0u, 1u, 3u}) {
      SCOPED_TRACE(std::to_string(n) + " at " + std::to_string(offset));
      std::vector<float> floats(n);
      for (float& f : floats) f = static_cast<float>(static_cast<int32_t>(lcg(state) >> 40)) / 4.0f;
      std::vector<unsigned char> in(offset + n * 4);
      for (bool swap : {false, true}) {
        std::vector<unsigned char> const src = swap ? swappedBytesOf(floats) : bytesOf(floats);
        std::copy(src.begin(), src.end(), in.begin() + offset);
        vUtl::copyConvert(in.data() + offset, vFLOAT32, in.data() + offset, vINT32, n,
                          vUtl::ConvertClip | (swap ? vUtl::ConvertSwapSource : 0));
        for (std::size_t k = 0; k < n; ++k)
          ASSERT_EQ(vUtl::nint(floats[k]), load<int32_t>(in.data() + offset + 4 * k)) << k;
      }
    }
  }
  // 5000 values cross the internal block of the pairs without a fused kernel more than once.
  std::size_t const n = 5000;
  std::vector<int64_t> v(n);
  for (std::size_t k = 0; k < n; ++k) v[k] = static_cast<int64_t>(k) * 1000003 - 2500000000LL;
  std::vector<unsigned char> const swapped = swappedBytesOf(v);
  std::vector<int16_t> out(n);
  vUtl::copyConvert(swapped.data(), vINT64, out.data(), vINT16, n, vUtl::ConvertSwapSource | vUtl::ConvertClip);
  for (std::size_t k = 0; k < n; ++k) {
    int64_t const want = v[k] < -32768 ? -32768 : (v[k] > 32767 ? 32767 : v[k]);
    ASSERT_EQ(want, out[k]) << k;
  }
  // Same type: the swap alone; a 1-byte type ignores the swap.
  std::vector<int64_t> back(n);
  vUtl::copyConvert(swapped.data(), vINT64, back.data(), vINT64, n, vUtl::ConvertSwapSource);
  EXPECT_EQ(v, back);
  std::vector<uint8_t> const bytes = {1, 2, 3};
  EXPECT_EQ(bytes, convert<uint8_t>(bytes, vUINT8, vUINT8, vUtl::ConvertSwapSource));
  // In place with a swap, on a pair without a fused kernel.
  std::vector<unsigned char> block = swappedBytesOf(std::vector<double>{1.5, -2.5, 1e19});
  vUtl::copyConvert(block.data(), vFLOAT64, block.data(), vINT64, 3, vUtl::ConvertSwapSource);
  std::vector<int64_t> inPlace(3);
  std::memcpy(inPlace.data(), block.data(), 24);
  EXPECT_EQ((std::vector<int64_t>{2, -3, INT64_MAX}), inPlace);
}

uint32_t toIeee(uint32_t w) {
  uint32_t out;
  vUtl::ibmToIeee(&w, &out, 1, false);
  return out;
}

uint32_t toIbm(uint32_t f) {
  uint32_t out;
  vUtl::ieeeToIbm(&f, &out, 1, false);
  return out;
}

TEST(vUtlIbmFloat, ValuesLimitsAndSwappedWords) {
  // Exactly representable in both: each converts to the other unchanged.
  struct {
    uint32_t ibm, ieee;
  } const exact[] = {
      {0x41100000u, 0x3F800000u},  // 1.0 = 0.1(hex) * 16^1
      {0x60FFFFFFu, 0x7F7FFFFFu},  // the largest float, (2^24 - 1) * 2^104
      {0x1B800000u, 0x00000001u},  // the smallest denormal, 2^-149 = 0.8(hex) * 16^-37
      {0x21400000u, 0x00800000u},  // the smallest normal float, 2^-126 = 0.4(hex) * 16^-31
  };
  for (auto const& c : exact) {
    EXPECT_EQ(c.ieee, toIeee(c.ibm)) << c.ibm;
    EXPECT_EQ(c.ibm, toIbm(c.ieee)) << c.ibm;
  }
  // The IBM range is far wider: its extremes leave the float range.
  EXPECT_EQ(0x7F800000u, toIeee(0x7FFFFFFFu));  // about 7.2e75
  EXPECT_EQ(0x00000000u, toIeee(0x00100000u));  // 16^-65, about 5.4e-79
  // Below the normal floats the result rounds: 7 * 2^-150 is 3.5 smallest steps, a tie that goes to the even 4.
  EXPECT_EQ(0x00000004u, toIeee(0x1C1C0000u));
  // An unnormalised IBM fraction carries the same value.
  EXPECT_EQ(0x3F800000u, toIeee(0x42010000u));  // 0.01(hex) * 16^2 = 1

  // Float to IBM loses up to three bits: above 1 the IBM step is 2^-20, eight float steps.
  struct {
    uint32_t ieee, ibm;
  } const lossy[] = {
      {0x3F800001u, 0x41100000u},  // 1 + 2^-23 rounds down to 1
      {0x3F800005u, 0x41100001u},  // 1 + 5 * 2^-23 lies above the half: up to 1 + 2^-20
      {0x3F800004u, 0x41100000u},  // exactly half, 0x100000 + 0.5: ties to even, down
      {0x3F80000Cu, 0x41100002u},  // exactly half, 0x100001 + 0.5: ties to even, up
      {bitsOf(std::nextafter(2.0f, 0.0f)), 0x41200000u},   // all float bits set: carries up to 2
      {bitsOf(std::nextafter(16.0f, 0.0f)), 0x41FFFFFFu},  // all 24 IBM bits used: nothing lost
      {0x7F800000u, 0x7FFFFFFFu},  // infinity: the largest IBM magnitude
      {0x7FC00000u, 0x00000000u},  // NaN: zero
  };
  for (auto const& c : lossy) EXPECT_EQ(c.ibm, toIbm(c.ieee)) << c.ieee;
  // The big-endian bytes of a SEG-Y trace: 100.0 and -118.625.
  std::vector<unsigned char> const bytes = {0x42, 0x64, 0x00, 0x00, 0xC2, 0x76, 0xA0, 0x00};
  std::vector<unsigned char> file = bytes;
  bool const little = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;
  float out[2];
  vUtl::ibmToIeee(file.data(), out, 2, little);
  EXPECT_EQ(100.0f, out[0]);
  EXPECT_EQ(-118.625f, out[1]);
  vUtl::ibmToIeee(file.data(), file.data(), 2, little);
  EXPECT_EQ(0, std::memcmp(out, file.data(), 8));
  vUtl::ieeeToIbm(file.data(), file.data(), 2, little);
  EXPECT_EQ(bytes, file);
}

TEST(vUtlCRC, KnownValueAndChaining) {
  char const text[] = "123456789";
  EXPECT_EQ(0xCBF43926u, vUtl::calculateCRC(text, 9));
  EXPECT_EQ(0u, vUtl::calculateCRC(text, 0));
  // Chained in pieces of every split gives the value of the whole.
  std::vector<unsigned char> data(1000);
  uint64_t state = 5;
  for (auto& c : data) c = static_cast<unsigned char>(lcg(state) >> 56);
  uint32_t const whole = vUtl::calculateCRC(data.data(), data.size());
  for (std::size_t split : {0u, 7u, 9u, 1000u}) {
    uint32_t const first = vUtl::calculateCRC(data.data(), split);
    EXPECT_EQ(whole, vUtl::calculateCRC(data.data() + split, data.size() - split, first)) << split;
  }
}

TEST(vUtlLimits, SmallestAndLargest) {
  unsigned int lo = 42, hi = 43;
  EXPECT_FALSE(vUtl::getLimits(std::vector<unsigned int>(), lo, hi));
  EXPECT_EQ(std::make_pair(42u, 43u), std::make_pair(lo, hi));
  EXPECT_TRUE(vUtl::getLimits(std::vector<unsigned int>{7, 3, 9, 3}, lo, hi));
  EXPECT_EQ(std::make_pair(3u, 9u), std::make_pair(lo, hi));
}

}  // namespace

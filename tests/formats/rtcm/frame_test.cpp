#include "host/formats/rtcm/frame.h"

#include <gtest/gtest.h>

#include "host/formats/rtcm/bits.h"
#include "tests/formats/rtcm/frames.h"

namespace {

using namespace orsolva_host::rtcm;
using orsolva_test::FromHex;
using orsolva_test::MessagesIn;

TEST(Bits, FieldsAcrossBytesAreReadMostSignificantFirst) {
  BitReader bits("\xA5\xF0\x0F");
  EXPECT_EQ(bits.Unsigned(4), 0xAu);
  EXPECT_EQ(bits.Unsigned(10), 0b0101111100u);
  EXPECT_EQ(bits.BitsLeft(), 10u);
}

TEST(Bits, SignedAndSignMagnitudeDifferInTheirNegativeValues) {
  const std::string bytes(1, '\xB0');  // 1011
  EXPECT_EQ(BitReader(bytes).Signed(4), -5);
  EXPECT_EQ(BitReader(bytes).SignMagnitude(4), -3);
}

TEST(Bits, FieldBeyondTheDataIsZeroAndSoAreThoseAfterIt) {
  BitReader bits("\xFF\xFF");
  EXPECT_EQ(bits.Unsigned(17), 0u);
  EXPECT_TRUE(bits.Overrun());
  EXPECT_EQ(bits.Unsigned(1), 0u);
}

TEST(Bits, WhatIsWrittenIsReadAgain) {
  BitWriter writer;
  writer.Unsigned(5, 3);
  writer.Signed(-12345, 38);
  writer.SignMagnitude(-77, 24);
  writer.Unsigned(~std::uint64_t{0}, 64);
  BitReader reader(writer.Bytes());
  EXPECT_EQ(reader.Unsigned(3), 5u);
  EXPECT_EQ(reader.Signed(38), -12345);
  EXPECT_EQ(reader.SignMagnitude(24), -77);
  EXPECT_EQ(reader.Unsigned(64), ~std::uint64_t{0});
  EXPECT_FALSE(reader.Overrun());
}

// The example of the standard, section 4.2, as widely reprinted: a message 1005 of station 2003.
const char kExample[] = "d300133ed7d30202980edeef34b4bd62ac0941986f33360b98";

TEST(Frame, ExampleOfTheStandardHasItsCrc) {
  const std::string frame = FromHex(kExample);
  FrameScanner scanner;
  const auto messages = MessagesIn(frame, scanner);
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(FrameOf(messages[0]), frame);
  StationDescription station;
  ASSERT_TRUE(TakeStation(messages[0], station));
  EXPECT_EQ(station.id, 2003);
  EXPECT_DOUBLE_EQ((*station.position_m)[0], 1114104.5999);
  EXPECT_DOUBLE_EQ((*station.position_m)[1], -4850729.7108);
  EXPECT_DOUBLE_EQ((*station.position_m)[2], 3975521.4643);
}

TEST(Frame, BytesInAnyPiecesGiveTheSameMessages) {
  const std::string stream = FromHex(kExample) + "noise \xD3 noise" + FrameOf("abc") + FrameOf("");
  FrameScanner whole;
  const auto expected = MessagesIn(stream, whole);
  ASSERT_EQ(expected.size(), 3u);
  FrameScanner scanner;
  std::vector<std::string> found;
  for (const char byte : stream) {
    scanner.Append({&byte, 1});
    while (const auto message = scanner.Next()) found.emplace_back(*message);
  }
  scanner.Finish();
  while (const auto message = scanner.Next()) found.emplace_back(*message);
  EXPECT_EQ(found, expected);
  EXPECT_EQ(scanner.Counts().skipped_bytes, 13u);
  EXPECT_EQ(scanner.Counts().frames, 3u);
}

TEST(Frame, WrongCrcCostsOnlyItsFrame) {
  std::string damaged = FrameOf("damaged message");
  damaged[8] ^= 1;
  FrameScanner scanner;
  const auto messages = MessagesIn(FrameOf("first") + damaged + FrameOf("second"), scanner);
  EXPECT_EQ(messages, (std::vector<std::string>{"first", "second"}));
  EXPECT_EQ(scanner.Counts().crc_errors, 1u);
  EXPECT_EQ(scanner.Counts().skipped_bytes, damaged.size());
}

TEST(Frame, FrameWithinTheLengthOfAFalsePreambleIsFound) {
  const std::string false_head = FromHex("d303ff");
  FrameScanner scanner;
  const auto messages = MessagesIn(false_head + FrameOf("inside") + FrameOf("behind"), scanner);
  EXPECT_EQ(messages, (std::vector<std::string>{"inside", "behind"}));
}

TEST(Frame, PreambleWithReservedBitsIsNone) {
  FrameScanner scanner;
  scanner.Append(FromHex("d3fc00") + FrameOf("at once"));
  const auto message = scanner.Next();  // without waiting for the bytes of the false length
  ASSERT_TRUE(message);
  EXPECT_EQ(*message, "at once");
}

TEST(Frame, DataThatEndWithinAFrameAreCounted) {
  FrameScanner scanner;
  const std::string frame = FrameOf("cut off");
  EXPECT_TRUE(MessagesIn(frame.substr(0, frame.size() - 1), scanner).empty());
  EXPECT_EQ(scanner.Counts().cut_frames, 1u);
  EXPECT_EQ(scanner.Counts().crc_errors, 0u);
}

TEST(Frame, LongestMessageIsRead) {
  FrameScanner scanner;
  const auto messages = MessagesIn(FrameOf(std::string(kMaxMessageBytes, 'x')), scanner);
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].size(), kMaxMessageBytes);
}

}  // namespace

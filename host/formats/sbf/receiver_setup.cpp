#include "host/formats/sbf/receiver_setup.h"

#include "host/formats/sbf/frame.h"
#include "host/formats/streams/little_endian.h"

namespace orsolva_host::sbf {
namespace {

struct TextRow {
  std::size_t place;
  std::size_t length;
  std::string ReceiverSetup::*text;
};

constexpr TextRow kTexts[] = {
    {16, 60, &ReceiverSetup::marker},           {76, 20, &ReceiverSetup::marker_number},
    {156, 20, &ReceiverSetup::receiver_number}, {176, 20, &ReceiverSetup::receiver},
    {196, 20, &ReceiverSetup::firmware},        {216, 20, &ReceiverSetup::antenna_number},
    {236, 20, &ReceiverSetup::antenna},
};
constexpr std::size_t kBytes = 268;  // with three offsets of the antenna

}  // namespace

std::optional<ReceiverSetup> ReadReceiverSetup(std::string_view block) {
  if (block.size() < kBytes) return std::nullopt;
  ReceiverSetup setup;
  for (const TextRow& row : kTexts) setup.*row.text = TextAt(block, row.place, row.length);
  return setup;
}

std::string WriteReceiverSetup(const ReceiverSetup& setup, std::int64_t time_ns) {
  std::string body = TimeFields(time_ns);
  body.resize(kBytes - kHeadBytes, '\0');
  for (const TextRow& row : kTexts) {
    const std::string text = (setup.*row.text).substr(0, row.length);
    body.replace(row.place - kHeadBytes, text.size(), text);
  }
  return BlockOf(kReceiverSetup, body);
}

}  // namespace orsolva_host::sbf

#include "host/judging/stream_reading.h"

#include <utility>

#include "host/formats/rtcm/reader.h"
#include "host/formats/sbf/frame.h"
#include "host/formats/sbf/reader.h"
#include "host/formats/ubx/messages.h"
#include "host/formats/ubx/reader.h"

namespace orsolva_host {
namespace {

/// Whether messages give phases in the steps of MSM4 and MSM5.
bool IsCoarse(rtcm::MsmType type) { return type.kind == 4 || type.kind == 5; }

class RtcmReading : public StreamReading {
 public:
  RtcmReading(std::unique_ptr<ByteSource> bytes, const std::string& name, Diagnostics& diagnostics,
              const StreamOptions& options)
      : reader_(std::move(bytes), name, diagnostics,
                {options.near_ns, rtcm::EpochEnd::kNextTime, options.epochs}) {}

  RecordingReader& Recording() override { return reader_; }
  void Describe(ObservationHeader& header) const override {
    const rtcm::StationDescription& station = reader_.Messages().FirstStation();
    header.receiver = station.receiver;
    header.antenna = station.antenna;
    header.position = station.position_m;
  }
  std::string Receiver() const override { return reader_.Station().receiver; }
  std::string Antenna() const override { return reader_.Station().antenna; }
  std::optional<std::int64_t> FirstTime() const override { return reader_.Messages().FirstTime(); }
  void GiveEphemerides(StreamNavigation& navigation) override {
    navigation.Take(reader_.TakeEphemerides(), reader_.TakeBroadcast());
  }
  void TakeChannel(int glonass_number, int channel) override { reader_.TakeChannel(glonass_number, channel); }

 private:
  void AddFacts(StreamFacts& stream) const override {
    stream.format = "RTCM 3";
    for (const auto& [type, count] : reader_.Messages().Counts().types) {
      stream.messages.push_back({type, count.messages, count.damaged, rtcm::IsDecoded(type)});
      const auto msm = rtcm::MsmTypeOf(type);
      if (!msm || !IsCoarse(*msm) || stream.coarse_systems.find(msm->system) != std::string::npos) continue;
      stream.coarse_systems += msm->system;
    }
  }

  rtcm::Reader reader_;
};

class SbfReading : public StreamReading {
 public:
  SbfReading(std::unique_ptr<ByteSource> bytes, const std::string& name, Diagnostics& diagnostics,
             const StreamOptions& options)
      : reader_(std::move(bytes), name, diagnostics, options.epochs) {}

  RecordingReader& Recording() override { return reader_; }
  void Describe(ObservationHeader& header) const override {
    const sbf::ReceiverSetup& setup = reader_.Messages().FirstSetup();
    header.marker = setup.marker;
    header.marker_number = setup.marker_number;
    header.receiver = setup.receiver;
    header.receiver_number = setup.receiver_number;
    header.receiver_firmware = setup.firmware;
    header.antenna = setup.antenna;
    header.antenna_number = setup.antenna_number;
    header.glonass_channels = reader_.Messages().Channels();
  }
  std::string Receiver() const override { return reader_.Messages().Setup().receiver; }
  std::string Antenna() const override { return reader_.Messages().Setup().antenna; }
  std::optional<std::int64_t> FirstTime() const override { return reader_.Messages().FirstTime(); }
  void GiveEphemerides(StreamNavigation& navigation) override { navigation.Take(reader_.TakeEphemerides()); }

 private:
  void AddFacts(StreamFacts& stream) const override {
    stream.format = "Septentrio SBF";
    for (const auto& [number, count] : reader_.Messages().Counts().types) {
      stream.messages.push_back({number, count.blocks, count.damaged, sbf::IsDecoded(number)});
    }
  }

  sbf::Reader reader_;
};

class UbxReading : public StreamReading {
 public:
  UbxReading(std::unique_ptr<ByteSource> bytes, const std::string& name, Diagnostics& diagnostics,
             const StreamOptions& options)
      : reader_(std::move(bytes), name, diagnostics, options.epochs) {}

  RecordingReader& Recording() override { return reader_; }
  void Describe(ObservationHeader& header) const override {
    header.receiver = reader_.Messages().FirstReceiver().model;
    header.receiver_firmware = reader_.Messages().FirstReceiver().firmware;
    header.glonass_channels = reader_.Messages().Channels();
  }
  std::string Receiver() const override { return reader_.Messages().Receiver().model; }
  std::string Antenna() const override { return {}; }
  std::optional<std::int64_t> FirstTime() const override { return reader_.Messages().FirstTime(); }

 private:
  void AddFacts(StreamFacts& stream) const override {
    stream.format = "u-blox UBX";
    for (const auto& [type, count] : reader_.Messages().Counts().types) {
      stream.messages.push_back({type, count.messages, count.damaged, ubx::IsDecoded(type)});
    }
  }

  ubx::Reader reader_;
};

}  // namespace

StreamFacts StreamReading::Facts() {
  StreamFacts stream;
  const FrameCounts& frames = Recording().Frames();
  stream.frames = frames.frames;
  stream.crc_errors = frames.crc_errors;
  stream.skipped_bytes = frames.skipped_bytes;
  AddFacts(stream);
  return stream;
}

std::unique_ptr<StreamReading> ReadStream(StreamFormat format, std::unique_ptr<ByteSource> bytes,
                                          const std::string& name, Diagnostics& diagnostics,
                                          const StreamOptions& options) {
  if (format == StreamFormat::kSbf) {
    return std::make_unique<SbfReading>(std::move(bytes), name, diagnostics, options);
  }
  if (format == StreamFormat::kUbx) {
    return std::make_unique<UbxReading>(std::move(bytes), name, diagnostics, options);
  }
  return std::make_unique<RtcmReading>(std::move(bytes), name, diagnostics, options);
}

}  // namespace orsolva_host

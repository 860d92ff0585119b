#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <vector>

#include "Motion/DeviceWatch.h"
#include "Motion/FindMotionSource.h"
#include "Motion/HidReportDescriptor.h"
#include "Motion/IioBufferReader.h"
#include "Motion/IioRate.h"
#include "Motion/IioSource.h"
#include "Tools/Devices/FakeIio.h"

namespace tobrin {
namespace {

using Bytes = std::vector<uint8_t>;
using testing::FakeIio;

TEST(IioScanType, TakesTheBitsThatCount) {
  const std::tuple<const char*, Bytes, int64_t> rows[] = {
      {"be:s16/16>>0", {0xff, 0xfe}, -2},
      {"le:s16/32>>0", {0xe8, 0x03, 0xe8, 0x03}, 1000},  // the upper half is garbage
      {"le:s12/16>>4", {0x0f, 0x80}, -2048},
      {"be:u12/16>>4", {0x80, 0x0f}, 2048},
      {"le:s64/64>>0", {1, 2, 3, 4, 5, 6, 7, 0x80}, -0x7ff8f9fafbfcfdff},
  };
  for (const auto& [type, bytes, number] : rows)
    EXPECT_EQ(IioScanType::parse(type).value().decode(bytes), number) << type;
  for (const char* wrong :
       {"", "le:s16/16", "xe:s16/16>>0", "le:f32/32>>0", "le:s17/16>>0", "le:s0/16>>0",
        "le:s16/24>>0", "le:s12/16>>5", "le:s16/16>>4294967295", "le:s16/16X2>>0"})
    EXPECT_FALSE(IioScanType::parse(wrong)) << wrong;
}

TEST(IioLayout, NumbersLieAtMultiplesOfTheirSizeInTheOrderOfTheirIndex) {
  const IioScanType axis = *IioScanType::parse("le:s32/32>>0");
  const IioScanType stamp = *IioScanType::parse("le:s64/64>>0");
  const IioLayout layout({{IioLayout::stamp, 3, stamp},
                          {IioLayout::z, 2, axis},
                          {IioLayout::x, 0, axis},
                          {IioLayout::y, 1, axis}});
  EXPECT_EQ(layout.frameBytes(), 24u);
  const Bytes frame = {0xf9, 0xfd, 0xff, 0xff, 0x7c, 0xff, 0xff, 0xff, 0x4d, 0x43, 0x0f, 0x00,
                       0xaa, 0xbb, 0xcc, 0xdd, 0x75, 0x69, 0x42, 0x5c, 0x06, 0x00, 0x00, 0x00};
  const IioLayout::Frame decoded = layout.decode(frame);
  EXPECT_EQ(decoded.axes, (std::array<int64_t, 3>{-519, -132, 1000269}));
  EXPECT_EQ(decoded.stamp, 27317660021);
}

TEST(IioRate, PrefersWhatShowsAKeystrokeWhole) {
  const std::array<const char*, 3> rows[] = {
      // available, first and second choice
      {"1 10 25 50 100 200 400 1600 5376", "1600", "400"},
      {"12.500000 25 1000 3200", "1000", "25"},
      {"100 50", "100", "50"},
      {"nonsense 0 -5", "1000", "800"},
  };
  for (const auto& [available, first, second] : rows) {
    const auto rates = ratesToTry(available);
    ASSERT_GE(rates.size(), 2u) << available;
    EXPECT_EQ(rates[0], first);
    EXPECT_EQ(rates[1], second);
  }
  EXPECT_EQ(ratesToTry("[1 1 4000]").at(0), "1000");
  EXPECT_EQ(ratesToTry("[0.5 0.5 250]").at(0), "250");
}

TEST(IioDevice, TheSensorNearTheKeyboardComesFirst) {
  FakeIio tree;
  tree.add(0, {{"label", "accel-display"}});
  tree.add(1, {{"label/folder", "reading it fails, as of a driver that answers with an error"}});
  tree.add(10, {{"location", "base"}});
  tree.write(FakeIio::devices + "iio:device2/in_anglvel_x_raw", "0");
  const auto devices = IioDevice::findAll(tree.paths());
  ASSERT_EQ(devices.size(), 3u) << "a gyroscope is none";
  EXPECT_EQ(devices[0].title(), "accel_10 (iio:device10)");
  EXPECT_EQ(devices[2].place, IioDevice::Place::lid);
}

TEST(IioDevice, CountsBecomeGByScaleOffsetAndMount) {
  const std::pair<std::vector<std::pair<std::string, std::string>>, Acceleration> rows[] = {
      {{{"in_accel_y_scale", "19.6133"}, {"in_accel_z_offset", "5"}}, {1, 4, 8}},
      {{{"in_mount_matrix", "0, -1, 0; 1, 0, 0; 0, 0, 1\n"}}, {-2, 1, 3}},
      {{{"mount_matrix", "0, 0, 0; 0, 0, 0; 0, 0, 0"}}, {1, 2, 3}},  // nothing is left out
  };
  for (const auto& [attributes, expected] : rows) {
    FakeIio tree;
    tree.add(0, attributes, "9.80665");
    std::string reason;
    const auto calibration = IioDevice::findAll(tree.paths())[0].calibration(reason);
    ASSERT_TRUE(calibration) << reason;
    const Acceleration g = calibration->apply({1, 2, 3});
    EXPECT_NEAR(g.x, expected.x, 1e-9);
    EXPECT_NEAR(g.y, expected.y, 1e-9);
    EXPECT_NEAR(g.z, expected.z, 1e-9);
  }
  for (const char* scale : {"0", "nan", "-1", "", "1e999"}) {
    FakeIio tree;
    tree.add(0, {}, scale);
    IioSource source(tree.paths());
    EXPECT_FALSE(source.open()) << scale;
    EXPECT_EQ(source.problem(),
              "accel_0 (iio:device0) does not say the size of its counts (in_accel_scale)");
  }
}

TEST(IioBufferReader, PutsBackWhatItChanged) {
  FakeIio tree;
  tree.add(0, {{"in_accel_sampling_frequency_available", "12 100 200"},
               {"current_timestamp_clock", "realtime"}});
  tree.addBuffer(0);
  const auto state = [&] {
    std::string all;
    for (const char* name :
         {"in_accel_sampling_frequency", "current_timestamp_clock", "scan_elements/in_accel_y_en",
          "scan_elements/in_temp_en", "buffer/enable"})
      all += tree.attribute(0, name) + " ";
    return all;
  };
  const IioDevice device = IioDevice::findAll(tree.paths())[0];
  IioBufferReader::Refusal refusal;
  const auto prepared = [&] {
    return IioBufferReader::prepare(device, *device.calibration(refusal.words),
                                    IioBufferReader::Rate::highest, refusal);
  };
  auto reader = prepared();
  ASSERT_TRUE(reader) << refusal.words;
  EXPECT_EQ(state(), "12 realtime 0 1 0 ") << "not before start";
  ASSERT_TRUE(reader->start(refusal)) << refusal.words;
  EXPECT_EQ(state(), "200 monotonic 1 0 1 ");
  reader.reset();
  EXPECT_EQ(state(), "12 realtime 0 1 0 ");

  const auto another = [&](const char* attribute, const char* text) {
    tree.write(FakeIio::devices + "iio:device0/" + attribute, text);
  };
  reader = prepared();
  another("buffer/enable", "1");
  EXPECT_FALSE(reader->start(refusal));
  EXPECT_TRUE(refusal.inUse) << refusal.words;
  reader.reset();
  EXPECT_EQ(state(), "12 realtime 0 1 1 ") << "not half used";
  another("buffer/enable", "0");

  const auto node = tree.paths().dev / "iio:device0";
  std::filesystem::remove(node);
  ASSERT_EQ(mkfifo(node.c_str(), 0600), 0);
  const FileDescriptor silence(open(node.c_str(), O_RDWR));
  reader = prepared();
  ASSERT_TRUE(reader->start(refusal)) << refusal.words;
  another("buffer/enable", "0");
  another("in_accel_sampling_frequency", "50");
  DeviceWatch watch("iio");
  EXPECT_EQ(reader->stream([](auto, auto) {}, WakeEvent(), watch), IioReader::End::taken);
  reader.reset();
  EXPECT_EQ(state(), "50 realtime 0 1 0 ") << "what another has changed is its own";
}

TEST(IioSource, EndsWhereAnotherProgramUsesTheDevice) {
  FakeIio tree;
  tree.add(0, {});
  tree.addBuffer(0);
  IioSource source(tree.paths());
  ASSERT_TRUE(source.open()) << source.problem();
  tree.write(FakeIio::devices + "iio:device0/buffer/enable", "1");
  source.run([](auto, auto) { FAIL() << "another program's samples"; });
  source.close();
  EXPECT_EQ(source.problem(), "accel_0 (iio:device0) is in use by another program");
  EXPECT_FALSE(source.open());
  tree.write(FakeIio::devices + "iio:device0/buffer/enable", "0");
  EXPECT_TRUE(source.open()) << "in turn";
}

TEST(IioSource, ReadsSinglyWhereThereIsNoBuffer) {
  FakeIio tree;
  tree.add(0, {{"in_accel_z_raw", "1\n"}}, "9.80665");
  IioSource source(tree.paths());
  ASSERT_TRUE(source.open()) << source.problem();
  EXPECT_EQ(source.description(), "accel_0 (iio:device0), single readings");
  int reports = 0;
  source.run([&](std::span<const uint8_t> report, uint64_t) {
    EXPECT_EQ(decodeMotionReport(report), (Acceleration{0, 0, 1}));
    if (++reports == 3) source.interrupt();
  });
  EXPECT_EQ(reports, 3);
}

TEST(FindMotionSource, TraceThenRawDeviceThenAccelerometer) {
  FakeIio tree;
  const MotionPaths paths{tree.paths().sys, tree.paths().dev};
  EXPECT_FALSE(findMotionSource(paths));
  tree.add(0, {});
  EXPECT_EQ(findMotionSource(paths)->description(), "IIO accelerometer");
  tree.write("sys/class/hidraw/hidraw0/device/report_descriptor/folder", "reading fails");
  const char descriptor[] = "\x06\x00\xff\x09\x03\xa1\x01\x75\x08\x95\x16\x81\x02\xc0";
  tree.write("sys/class/hidraw/hidraw1/device/report_descriptor",
             std::string(descriptor, sizeof descriptor - 1));
  const auto raw = findMotionSource(paths);
  EXPECT_EQ(raw->description(), "HID motion sensor");
  EXPECT_FALSE(raw->open()) << "its node is missing";
  setenv(motionTraceVariable, "/no/such.csv", 1);
  const auto trace = findMotionSource(paths);
  unsetenv(motionTraceVariable);
  EXPECT_EQ(trace->description(), "motion trace /no/such.csv");
}

Bytes join(std::initializer_list<Bytes> parts) {
  Bytes all;
  for (const Bytes& part : parts)
    all.insert(all.end(), part.begin(), part.end());
  return all;
}

const Bytes motion = {0x06, 0x00, 0xff, 0x09, 0x03, 0xa1, 0x01};  // page 0xFF00, usage 3
const Bytes keyboard = {0x05, 0x01, 0x09, 0x06, 0xa1, 0x01};
const Bytes end = {0xc0};
const Bytes numbered = {0x85, 0x07};

Bytes input(uint8_t bytes) {
  return {0x75, 0x08, 0x95, bytes, 0x81, 0x02};
}

TEST(HidReportDescriptor, FindsTheMotionReportOfTheRightCollection) {
  const std::pair<Bytes, std::optional<HidMotionReport>> rows[] = {
      {join({motion, input(6), input(16), end}), {{0, 22, 0}}},
      {join({motion, numbered, input(22), end}), {{7, 23, 1}}},
      {join({motion, numbered, input(21), end}), {{7, 22, 0}}},  // its number counted in
      {join({motion, {0x85, 0x01}, input(8), numbered, input(22), end}), {{7, 23, 1}}},
      {join({keyboard, input(8), end, motion, input(22), end}), {{0, 22, 0}}},
      // The usage in four bytes, a page restored by a pop, a long item before.
      {join({{0x0b, 0x03, 0x00, 0x00, 0xff, 0xa1, 0x01}, input(22), end}), {{0, 22, 0}}},
      {join({{0x06, 0x00, 0xff, 0xa4, 0x05, 0x01, 0xb4, 0x09, 0x03, 0xa1, 0x01}, input(22), end}),
       {{0, 22, 0}}},
      {join({{0xfe, 0x02, 0x00, 0xa1, 0xa1}, motion, input(22), end}), {{0, 22, 0}}},
      // Another length, another usage, in a keyboard, in no collection, no input.
      {join({motion, input(23), end}), {}},
      {join({{0x06, 0x00, 0xff, 0x09, 0x04, 0xa1, 0x01}, input(22), end}), {}},
      {join({keyboard, motion, input(22), end, end}), {}},
      {join({{0x06, 0x00, 0xff, 0x09, 0x03}, input(22)}), {}},
      {join({motion, {0x75, 0x08, 0x95, 22, 0xb1, 0x02}, end}), {}},
  };
  for (const auto& [descriptor, expected] : rows)
    EXPECT_EQ(findMotionReport(descriptor), expected) << ::testing::PrintToString(descriptor);
}

}  // namespace
}  // namespace tobrin

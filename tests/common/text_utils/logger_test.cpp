// Named loggers: identity by name, level filtering, and the replaceable sink.
#include <gtest/gtest.h>

#include <mutex>
#include <thread>
#include <tuple>
#include <vector>

#include "vnxml/common/logger.h"

namespace vn {
namespace {

// A level, a logger name and a message, as the sink hears them.
using Record = std::tuple<TVnLogLevel, UnicodeString, UnicodeString>;

// Installs a recording sink for one test and restores the silent default afterwards.
class LoggerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Logger::SetSink([this](TVnLogLevel ALevel, std::u16string_view AName, std::u16string_view AMessage) {
      std::lock_guard lock(FMutex);
      FRecords.push_back({ALevel, UnicodeString(AName), UnicodeString(AMessage)});
    });
  }
  void TearDown() override { Logger::SetSink({}); }

  std::vector<Record> Records() {
    std::lock_guard lock(FMutex);
    return FRecords;
  }

 private:
  std::mutex FMutex;
  std::vector<Record> FRecords;
};

TEST_F(LoggerTest, OneLoggerPerNameSinkReceivesWhatPassesTheLevel) {
  TVnLogger& log = Logger::GetLogger(u"test.levels");
  log.Debug(u"d");
  log.Info(u"i");
  log.SetLevel(llWarn);
  EXPECT_EQ((std::tuple{log.IsEnabled(llInfo), log.IsEnabled(llError)}), std::tuple(false, true));
  log.Info(u"dropped");
  log.Warn(u"w");
  log.Error(u"e");
  log.SetLevel(llDebug);
  EXPECT_EQ(Records(), (std::vector<Record>{{llDebug, u"test.levels", u"d"}, {llInfo, u"test.levels", u"i"},
                                            {llWarn, u"test.levels", u"w"}, {llError, u"test.levels", u"e"}}));
  // An empty sink silences everything.
  Logger::SetSink({});
  Logger::GetLogger(u"test.silent").Error(u"nobody hears this");
  EXPECT_EQ(Records().size(), 4u);
  TVnLogger& xpath = Logger::GetLogger(u"XPath");
  // Names are told apart by case.
  EXPECT_EQ((std::tuple{&Logger::GetLogger(u"XPath") == &xpath, &Logger::GetLogger(u"xpath") == &xpath,
                        xpath.GetName()}),
            std::tuple(true, false, u"XPath"));
}

TEST_F(LoggerTest, ConcurrentLoggingLosesNothing) {
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([] {
      for (int i = 0; i < 250; ++i) Logger::GetLogger(u"test.threads").Info(u"x");
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Records().size(), 1000u);
}

}  // namespace
}  // namespace vn

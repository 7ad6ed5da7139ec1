// Memory, bytes, string and file streams: positions, sizes, block copies, modes and error texts.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <tuple>
#include <type_traits>

#include "common/message_of.h"
#include "support/files.h"
#include "support/raises.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"

namespace vn {
namespace {

std::string ReadAll(TStream& AStream) {
  std::string bytes(static_cast<size_t>(AStream.GetSize()), '\0');
  AStream.SetPosition(0);
  AStream.ReadBuffer(bytes.data(), static_cast<Int64>(bytes.size()));
  return bytes;
}

// A private folder per test process, removed with the object.
struct TempDir : test::TempFile {
  TempDir() : TempFile("streams") { std::filesystem::create_directories(Path); }
  UnicodeString File(const std::string& AName) const { return (Path / AName).u16string(); }
};

TEST(MemoryStream, WriteSeekReadSizeAndGeometricGrowth) {
  TMemoryStream m;
  m.WriteBuffer("hello world", 11);
  char buf[8] = {};
  // A short read at the end is not an error; a seek before the start is clipped to it.
  EXPECT_EQ((std::tuple{m.GetSize(), m.Seek(-5, soEnd), m.Read(buf, 8), std::string(buf, 5), m.Seek(-100, soCurrent)}),
            std::tuple(11, 6, 5, "world", 0));
  m.Seek(2, soBeginning);
  m.WriteBuffer("LL", 2);  // overwrites in place
  EXPECT_EQ(ReadAll(m), "heLLo world");

  // Writing after a seek past the end leaves zeros in the gap, not garbage.
  m.Seek(13, soBeginning);
  m.WriteBuffer("!", 1);
  EXPECT_EQ(ReadAll(m), std::string("heLLo world\0\0!", 14));

  m.SetSize(5);
  EXPECT_EQ(ReadAll(m), "heLLo");
  m.SetPosition(5);
  m.SetSize(2);
  EXPECT_EQ(m.GetPosition(), 2);  // clipped with the size
  m.Clear();
  EXPECT_EQ((std::tuple{m.GetSize(), m.GetCapacity(), m.GetMemory()}), std::tuple(0, 0, nullptr));

  // Growth is geometric and keeps the content.
  TMemoryStream grown;
  std::string expected;
  Int64 reallocations = 0, lastCapacity = 0;
  for (int i = 0; i < 100000; ++i) {
    const std::string piece = std::to_string(i) + ",";
    grown.WriteBuffer(piece.data(), static_cast<Int64>(piece.size()));
    expected += piece;
    if (grown.GetCapacity() != lastCapacity) ++reallocations, lastCapacity = grown.GetCapacity();
  }
  EXPECT_EQ(ReadAll(grown), expected);
  EXPECT_LT(reallocations, 40);
  grown.SetCapacity(1);  // never below the size
  EXPECT_EQ(grown.GetCapacity(), grown.GetSize());
}

TEST(MemoryStream, CopyFromLoadFromStreamAndReadErrors) {
  TMemoryStream source;
  std::string content(3 * 1024 * 1024 + 17, '\0');
  for (size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>(i * 7);
  source.WriteBuffer(content.data(), static_cast<Int64>(content.size()));

  TMemoryStream all;
  // 0 copies everything from the start.
  EXPECT_EQ((std::tuple{all.CopyFrom(&source, 0), ReadAll(all)}),
            std::tuple(static_cast<Int64>(content.size()), content));

  source.SetPosition(10);
  TMemoryStream part;
  EXPECT_EQ((std::tuple{part.CopyFrom(&source, 5), source.GetPosition(), ReadAll(part)}),
            std::tuple(5, 15, content.substr(10, 5)));

  source.SetPosition(content.size() - 2);
  EXPECT_THROW(part.CopyFrom(&source, 5), EReadError);

  TMemoryStream loaded;
  loaded.LoadFromStream(&source);
  EXPECT_EQ((std::tuple{loaded.GetPosition(), ReadAll(loaded)}), std::tuple(0, content));

  TMemoryStream m;
  m.WriteBuffer("abc", 3);
  m.SetPosition(1);
  char buf[4];
  EXPECT_EQ(test::MessageOf<EReadError>([&] { m.ReadBuffer(buf, 3); }), u"Stream read error");
  EXPECT_THROW(TMemoryStream().ReadBuffer(buf, 1), EReadError);
  TMemoryStream().ReadBuffer(buf, 0);  // nothing asked, nothing missing
}

TEST(BytesAndStringStream, RoundTrips) {
  TBytesStream b(TBytes{1, 2, 3});
  b.Seek(0, soEnd);
  b.WriteBuffer("\x04", 1);
  EXPECT_EQ(b.GetBytes(), (TBytes{1, 2, 3, 4}));

  EXPECT_EQ(TStringStream(u"h\u00E9\u20AC").GetDataString(), u"h\u00E9\u20AC");
  TStringStream latin(u"h\u00E9", 28591);
  EXPECT_EQ(ReadAll(latin), "h\xE9");
  latin.WriteString(u"!");
  EXPECT_EQ(latin.GetDataString(), u"h\u00E9!");
}

TEST(FileStream, CreateWriteReopenAndModes) {
  TempDir dir;
  const UnicodeString name = dir.File("a.bin");
  {
    TFileStream f(name, fmCreate);
    f.WriteBuffer("0123456789", 10);
    EXPECT_EQ(f.GetSize(), 10);
    f.SetSize(4);
    EXPECT_EQ(f.GetPosition(), 4);
  }
  {
    TFileStream f(name, fmOpenRead);
    // Opened for reading only.
    EXPECT_EQ((std::tuple{ReadAll(f), f.Write("x", 1)}), std::tuple("0123", 0));
    EXPECT_THROW(f.WriteBuffer("x", 1), EWriteError);
  }
  {
    TFileStream f(name, fmOpenReadWrite);
    f.Seek(0, soEnd);
    f.WriteBuffer("45", 2);
  }
  {
    TFileStream f(name, fmOpenWrite);
    char c;
    EXPECT_EQ(f.Read(&c, 1), 0);  // opened for writing only
    f.WriteBuffer("A", 1);       // at the start, no truncation
  }
  TMemoryStream m;
  m.LoadFromFile(name);
  m.SaveToFile(dir.File("b.bin"));
  TMemoryStream copy;
  copy.LoadFromFile(dir.File("b.bin"));
  EXPECT_EQ((std::tuple{ReadAll(m), ReadAll(copy)}), std::tuple("A12345", "A12345"));

  { TFileStream again(name, fmCreate); }  // fmCreate truncates an existing file
  EXPECT_EQ(TFileStream(name, fmOpenRead).GetSize(), 0);
}

// Opening AName raises exactly E, with the file name and the system's reason.
template <class E>
void ExpectFileError(const UnicodeString& AName, Word AMode, std::u16string_view AReason) {
  const std::u16string_view format = std::is_same_v<E, EFCreateError> ? cSFCreateErrorEx : cSFOpenErrorEx;
  test::ExpectRaises<E>([&] { TFileStream f(AName, AMode); }, Format(format, {AName, AReason}));
}

TEST(FileStream, ErrorsCarryFileNameAndSystemReasonShareModesExcludeEachOther) {
  TempDir dir;
  ExpectFileError<EFOpenError>(dir.File("missing.xml"), fmOpenRead, u"No such file or directory");
  ExpectFileError<EFCreateError>(dir.File("no/such/dir.xml"), fmCreate, u"No such file or directory");
  ExpectFileError<EFOpenError>(dir.File(""), fmOpenRead, u"Is a directory");
  const UnicodeString name = dir.File("x");
  { TFileStream f(name, fmCreate); }
  ExpectFileError<EFCreateError>(name, fmCreate | fmExclusive, u"File exists");

  // Share modes exclude each other.
  const UnicodeString locked = dir.File("locked");
  TFileStream writer(locked, fmCreate | fmShareExclusive);
  writer.WriteBuffer("data", 4);
  for (Word share : {fmShareDenyWrite, fmShareExclusive})
    EXPECT_THROW(TFileStream(locked, fmOpenRead | share), EFOpenError);
  // A stream that asks for no lock still opens, as share-compatible opens do.
  TFileStream reader(locked, fmOpenRead | fmShareDenyNone);
  EXPECT_EQ(ReadAll(reader), "data");
  // fmCreate doesn't truncate a file it isn't allowed to lock.
  EXPECT_THROW(TFileStream(locked, fmCreate | fmShareExclusive), EFCreateError);
  EXPECT_EQ(reader.GetSize(), 4);
}

}  // namespace
}  // namespace vn

// The text of a load: a caller's block, or a memory stream's, scanned where it stands; any other
// stream read once into a block of its size. Every load of the library comes this way.
#pragma once

#include <cstddef>

#include "vnxml/common/types.h"

namespace vn {
class TStream;
class TVnDOMNode;
}

namespace vn::detail {

class LoadSource {
 public:
  LoadSource(const void* AData, size_t ASize) : FData(static_cast<const Byte*>(AData)), FSize(AData ? ASize : 0) {}
  /// The stream from its position to its end.
  explicit LoadSource(TStream& AStream);
  ~LoadSource();
  LoadSource(const LoadSource&) = delete;
  LoadSource& operator=(const LoadSource&) = delete;

  /// What a document finds by itself: a byte-order mark (passed over), else the encoding that
  /// its first tag declares in double quotes; 0 leaves the choice to the reader's prolog.
  Word DetectCodePage();
  /// Passes the blanks in front of the text, in units of ACodePage: the reader starts on the
  /// first significant character, and its lines and columns count from there.
  void SkipBlanks(Word ACodePage);

  const Byte* Data() const { return FData; }
  size_t Size() const { return FSize; }

 private:
  /// ASize bytes of the load's own: large ones on huge pages where the system gives them.
  void Own(size_t ASize);

  Byte* FOwned = nullptr;
  size_t FOwnedSize = 0;
  bool FOwnedHuge = false;
  const Byte* FData;
  size_t FSize;
};

/// Parses ASource into ATarget in ACodePage (0: the prolog decides) with a parser that reports
/// to the events of ATarget's document.
void LoadInto(TVnDOMNode& ATarget, LoadSource& ASource, Word ACodePage);

}  // namespace vn::detail

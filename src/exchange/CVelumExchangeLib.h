// Functions of CVelumLib that bring pictures into a stack.
#pragma once

#include "model/CVelumStack.h"

namespace CVelumLib {

// The bytes of a picture and where they come from.
struct TPicSource {
  QByteArray iBytes;
  QString iName;        // file name without folder
  QString iFilename;    // full path; empty for what never was a file
  double iFileDate = 0; // days
  double iFileTime = 0;
};

// Whether a picture gets a sample; a wallpaper is shown as it is.
enum class EPicSample { Yes, No };

// Brings a picture file into a stack as a blob, byte for byte, and makes its sample. Failures are shown and
// leave the stack as it was, as does a no to the question about a format that the phone does not know (such
// bytes are kept undecoded). aBlob is the new picture; returns whether there is one.
bool HandleImportPic(CVelumStack& aStack, const QString& aFilename, Ref<CVelumBlob>& aBlob,
                     EPicSample aSample = EPicSample::Yes);
// The same for a picture that is in memory.
bool HandleImportPic(CVelumStack& aStack, const TPicSource& aSource, Ref<CVelumBlob>& aBlob,
                     EPicSample aSample = EPicSample::Yes);
// Stores the picture's size in aBlob, and adds a JPEG whose longer side is 200 pixels when the picture is
// larger than that. Throws before anything is changed when the bytes cannot be decoded.
void MakeSample(CVelumStack& aStack, const Ref<CVelumBlob>& aBlob);
// The blob that a picture field refers to: the sample, or the picture where there is none.
[[nodiscard]] qint32 FieldBlobId(const CVelumBlob& aBlob);

} // namespace CVelumLib

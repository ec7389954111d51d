#include "toolkit/CVelumRtf.h"

#include "core/CVelumLib.h"

#include <QStringView>
#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int EMaxHalfPoints = 2000;
constexpr qint64 EMaxNumber = 1000000000;

bool IsLetter(QChar aChar) {
  return (aChar >= u'a' && aChar <= u'z') || (aChar >= u'A' && aChar <= u'Z');
}

bool IsDigit(QChar aChar) {
  return aChar >= u'0' && aChar <= u'9';
}

// A document takes some characters for marks of its own.
QChar Shown(QChar aChar) {
  switch (aChar.unicode()) {
  case 0:
  case QChar::ParagraphSeparator:
  case QChar::ObjectReplacementCharacter:
  case 0xFDD0:
  case 0xFDD1:
    return QChar::ReplacementCharacter;
  default:
    return aChar;
  }
}

class CReader {
public:
  explicit CReader(QStringView aRtf) : iRtf(aRtf) { iText.iParas.append(TRtfPara()); }
  TRtfText Read();

private:
  enum EDest { EBody, EFonts, EColors, ENowhere };
  // What a group keeps to itself.
  struct TState {
    TRtfLook iLook;
    EDest iDest = EBody;
    int iFallback = 1; // characters that stand behind a \u for readers that do not know it
    int iSkip = 0;     // of them still to come
    bool iOwn = false; // the group is made by a brace of the text itself
  };
  struct TWord {
    QStringView iName;
    void (*iDo)(CReader& aReader, int aNumber, bool aOn);
  };

  // The character at the present place or behind it; 0 at the end.
  [[nodiscard]] QChar Peek(qsizetype aAhead = 0) const {
    return iAt + aAhead < iRtf.size() ? iRtf[iAt + aAhead] : QChar();
  }
  void Open();
  void Close();
  void Hide();
  void Control();
  void Word();
  void HexChar();
  void LineEnd();
  void Char(QChar aChar);
  void AddText(QChar aChar);
  void EndPara();
  void TableChar(QChar aChar);
  void Font(int aNumber);
  void EndColor();
  void Unicode(int aCode);
  // Reads digits with a sign in front, if there are any; too large a number becomes a large one.
  [[nodiscard]] bool ReadNumber(int& aNumber);
  static const QList<TWord>& Words();

  QStringView iRtf;
  qsizetype iAt = 0;
  TState iState;
  QList<TState> iOuter;
  TRtfText iText;
  bool iInParas = false;   // the head is over
  bool iParaEnded = false; // the next character starts a paragraph
  int iShown = 0;          // units of the shown text so far
  int iFontNum = 0;
  QString iFontName;
  std::array<int, 3> iRgb{};
};

const QList<CReader::TWord>& CReader::Words() {
  static const QList<TWord> words{
      {u"par", [](CReader& aReader, int, bool) { aReader.EndPara(); }},
      {u"pard", [](CReader& aReader, int, bool) { aReader.iInParas = true; }},
      {u"plain", [](CReader& aReader, int, bool) { aReader.iState.iLook = TRtfLook(); }},
      {u"b", [](CReader& aReader, int, bool aOn) { aReader.iState.iLook.iBold = aOn; }},
      {u"i", [](CReader& aReader, int, bool aOn) { aReader.iState.iLook.iItalic = aOn; }},
      {u"ul", [](CReader& aReader, int, bool aOn) { aReader.iState.iLook.iUnderline = aOn; }},
      {u"cf", [](CReader& aReader, int aNumber, bool) { aReader.iState.iLook.iColor = aNumber; }},
      {u"f", [](CReader& aReader, int aNumber, bool) { aReader.Font(aNumber); }},
      {u"fs",
       [](CReader& aReader, int aNumber, bool) {
         if (aNumber > 0) aReader.iState.iLook.iHalfPoints = std::min(aNumber, EMaxHalfPoints);
       }},
      {u"u", [](CReader& aReader, int aNumber, bool) { aReader.Unicode(aNumber); }},
      {u"uc", [](CReader& aReader, int aNumber, bool) { aReader.iState.iFallback = std::max(0, aNumber); }},
      {u"fonttbl", [](CReader& aReader, int, bool) { aReader.iState.iDest = EFonts; }},
      {u"colortbl", [](CReader& aReader, int, bool) { aReader.iState.iDest = EColors; }},
      {u"red", [](CReader& aReader, int aNumber, bool) { aReader.iRgb[0] = aNumber; }},
      {u"green", [](CReader& aReader, int aNumber, bool) { aReader.iRgb[1] = aNumber; }},
      {u"blue", [](CReader& aReader, int aNumber, bool) { aReader.iRgb[2] = aNumber; }},
  };
  return words;
}

TRtfText CReader::Read() {
  while (iAt < iRtf.size()) {
    const QChar c = iRtf[iAt++];
    switch (c.unicode()) {
    case '{':
      Open();
      break;
    case '}':
      Close();
      break;
    case '\\':
      Control();
      break;
    case '\r':
    case '\n':
      LineEnd();
      break;
    default:
      Char(c);
    }
  }
  return std::move(iText);
}

void CReader::Open() {
  iOuter.append(iState);
  // In the paragraphs themselves the only group that the writer makes is one round a character's number.
  const bool number = Peek() == u'\\' && Peek(1) == u'u' && IsDigit(Peek(2));
  iState.iOwn = iInParas && !number;
  iState.iSkip = 0;
  if (iState.iOwn) Hide();
}

void CReader::Close() {
  // The outermost group may be closed by a brace of the text.
  if (iOuter.size() <= 1) return Hide();
  if (iState.iOwn) Hide();
  iState = iOuter.takeLast();
}

void CReader::Hide() {
  if (iInParas) iText.iHidden.append(iShown + (iParaEnded ? 1 : 0));
}

void CReader::Control() {
  const QChar c = Peek();
  if (IsLetter(c)) return Word();
  ++iAt;
  if (c == u'\'')
    HexChar();
  else if (c == u'*')
    iState.iDest = ENowhere;
  else if (c == u'\\' || c == u'{' || c == u'}')
    Char(c);
}

void CReader::Word() {
  const qsizetype from = iAt;
  while (IsLetter(Peek())) ++iAt;
  const QStringView name = iRtf.sliced(from, iAt - from);
  int number = 0;
  const bool hasNumber = ReadNumber(number);
  if (Peek() == u' ') ++iAt;
  const QList<TWord>& words = Words();
  const auto found =
      std::find_if(words.begin(), words.end(), [name](const TWord& aWord) { return aWord.iName == name; });
  if (found != words.end()) found->iDo(*this, number, !hasNumber || number != 0);
}

bool CReader::ReadNumber(int& aNumber) {
  const bool minus = Peek() == u'-' && IsDigit(Peek(1));
  if (minus) ++iAt;
  if (!IsDigit(Peek())) return false;
  qint64 number = 0;
  for (; IsDigit(Peek()); ++iAt) number = std::min(EMaxNumber, number * 10 + Peek().unicode() - u'0');
  aNumber = static_cast<int>(minus ? -number : number);
  return true;
}

void CReader::HexChar() {
  bool ok = false;
  const auto code = static_cast<char16_t>(iRtf.mid(iAt, 2).toUShort(&ok, 16));
  if (!ok) return;
  iAt = std::min(iAt + 2, iRtf.size());
  Char(QChar(CVelumLib::FromCodePage(code)));
}

void CReader::Unicode(int aCode) {
  if (iState.iDest != EBody) return;
  AddText(QChar(static_cast<char16_t>(aCode & 0xFFFF)));
  iState.iSkip = iState.iFallback;
}

void CReader::LineEnd() {
  if (iInParas) Char(u' ');
}

void CReader::Char(QChar aChar) {
  if (iState.iSkip > 0)
    --iState.iSkip;
  else if (iState.iDest == EBody)
    AddText(aChar);
  else
    TableChar(aChar);
}

void CReader::AddText(QChar aChar) {
  if (iParaEnded) {
    iText.iParas.append(TRtfPara{{}, iState.iLook});
    iParaEnded = false;
    ++iShown;
  }
  QList<TRtfRun>& runs = iText.iParas.last().iRuns;
  if (runs.isEmpty()) iText.iParas.last().iLook = iState.iLook;
  if (runs.isEmpty() || runs.last().iLook != iState.iLook) runs.append(TRtfRun{QString(), iState.iLook});
  runs.last().iText += Shown(aChar);
  ++iShown;
}

// The paragraph that follows begins with its first character or its own end: nothing follows the last one.
void CReader::EndPara() {
  if (iState.iDest != EBody) return;
  if (iParaEnded) {
    iText.iParas.append(TRtfPara());
    ++iShown;
  }
  if (iText.iParas.last().iRuns.isEmpty()) iText.iParas.last().iLook = iState.iLook;
  iParaEnded = true;
}

void CReader::Font(int aNumber) {
  if (iState.iDest == EFonts) {
    iFontNum = aNumber;
    iFontName.clear();
  } else {
    iState.iLook.iFont = aNumber;
  }
}

void CReader::TableChar(QChar aChar) {
  if (iState.iDest == EFonts) {
    if (aChar != u';')
      iFontName += aChar;
    else
      iText.iFonts.insert(iFontNum, iFontName.trimmed());
  } else if (iState.iDest == EColors && aChar == u';') {
    EndColor();
  }
}

void CReader::EndColor() {
  const auto part = [this](size_t aIndex) { return static_cast<qint32>(iRgb[aIndex] & 0xFF); };
  iText.iColors.append(iText.iColors.isEmpty() ? ENoInt : part(0) | part(1) << 8 | part(2) << 16);
  iRgb = {};
}

} // namespace

TRtfText CVelumRtf::Read(const QString& aRtf) {
  return CReader(aRtf).Read();
}

#include "runtime/wiki/CVelumWikiTextBox.h"

#include "core/CVelumChecked.h"

#include <QScopeGuard>

namespace {

// Red 0, green -128, blue 0 by truncating division. A byte of -128 is 128: a dark green.
constexpr qint32 ELinkColor = -32768;
// Up to this length a link counts as one longer.
constexpr int EShortLink = 2;

} // namespace

void CVelumWikiTextBox::SetStr(const QString& aStr) {
  iStr = aStr;
  iLinks.clear();
  iWhole = false;
  iBoldOn = iItalicOn = iUnderlineOn = false;
  auto dropLinks = qScopeGuard([this] { iLinks.clear(); });
  iScanner->SetLine(iStr);
  NextSym();
  iRich->BeginText();
  iRich->BeginPara();
  iPos = 0;
  while (iSym != ESymEof && iSym != ESymEol) AddSym();
  iRich->EndPara();
  iRich->EndText();
  iWhole = true;
  dropLinks.dismiss();
}

// Takes the present symbol and reads the next one.
void CVelumWikiTextBox::AddSym() {
  const auto flip = [this](bool& aOn, void (CVelumRichText::*aBegin)(), void (CVelumRichText::*aEnd)()) {
    aOn = !aOn;
    (iRich.Get()->*(aOn ? aBegin : aEnd))();
  };
  switch (iSym) {
  case ESymChar:
    iRich->AddStr(iSymStr);
    iPos += iSymStr.size();
    break;
  case ESymLink:
    AddLink();
    break;
  case ESymBold:
    flip(iBoldOn, &CVelumRichText::BeginBold, &CVelumRichText::EndBold);
    break;
  case ESymItalic:
    flip(iItalicOn, &CVelumRichText::BeginItalic, &CVelumRichText::EndItalic);
    break;
  case ESymUnderline:
    flip(iUnderlineOn, &CVelumRichText::BeginUnderline, &CVelumRichText::EndUnderline);
    break;
  case ESymLineBreak:
    iRich->AddStr(u" "_s);
    iPos += 1;
    break;
  case ESymBackslash:
    return AddBreak();
  case ESymParagraph:
    AddParagraph();
    break;
  default:
    CVelumError::AssertObj(false, this, u"SetStr"_s, u"sym"_s);
  }
  NextSym();
}

void CVelumWikiTextBox::AddLink() {
  const qsizetype bar = iSymStr.indexOf(u'|');
  const QString target = bar < 0 ? iSymStr : iSymStr.first(bar);
  const QString text = bar < 0 ? iSymStr : iSymStr.sliced(bar + 1);
  CVelumChecked::CheckIndex(iLinks.size(), EMaxLinks);
  iLinks.append(
      {CVelumChecked::Narrow<qint16>(iPos), CVelumChecked::Narrow<qint16>(text.size()), target, text});
  iPos += text.size();
  iRich->BeginUnderline();
  iRich->BeginColor(ELinkColor);
  iRich->AddStr(text);
  iRich->EndColor();
  iRich->EndUnderline();
}

void CVelumWikiTextBox::AddBreak() {
  iRich->EndPara();
  iRich->BeginPara();
  iPos += 2;
  NextSym();
  if (iSym == ESymLineBreak) NextSym();
}

void CVelumWikiTextBox::AddParagraph() {
  if (iBoldOn) iRich->EndBold();
  if (iItalicOn) iRich->EndItalic();
  if (iUnderlineOn) iRich->EndUnderline();
  iBoldOn = iItalicOn = iUnderlineOn = false;
  iRich->EndPara();
  iRich->AddSmallPara();
  iRich->BeginPara();
  iPos += 4;
}

bool CVelumWikiTextBox::GetLink(int aPos, QString& aTarget) const {
  for (const TWikiLink& link : iLinks) {
    const int end = link.iStart + link.iLen + (link.iLen <= EShortLink ? 1 : 0);
    if (aPos < link.iStart || aPos >= end) continue;
    aTarget = link.iTarget;
    return true;
  }
  return false;
}

#include "exchange/CVelumImportWatch.h"

// The text of the message has no room for a place.
void CVelumImportWatch::Message(qint32 aMsg, const QString& aP0) {
  if (aMsg != EMsgTooManyItems || aP0 == CVelumMsg::EUndefParam) {
    CVelumMsg::Show(aMsg, EMsgExclamation, aP0);
    return;
  }
  const QString text = CVelumMsg::Text(aMsg, CVelumMsg::EUndefParam) + u"\r\n"_s + aP0;
  CVelumSeams::Presenter().Message(aMsg, EMsgExclamation, CVelumMsg::Name(aMsg), text);
}

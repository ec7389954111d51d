// The bytes of a rollback journal, for its writer and its reader.
#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QtEndian>

// Little-endian:
//   head    8 bytes "OrvJrn02"; as 64-bit integers the lengths of the old and of the new document
//   pieces  64 bits position; 32 bits number of old bytes; 32 bits number of new bytes; the MD5 sum of the
//   new
//           bytes; the old bytes
//   end     8 bytes "OrvJrEnd"; the MD5 sum of all bytes in front of this end mark
namespace CVelumJournalFormat {

inline constexpr char EMagic[] = "OrvJrn02";
inline constexpr char EFamily[] = "OrvJrn"; // of the journals of all versions
inline constexpr char EEndMark[] = "OrvJrEnd";
inline constexpr qsizetype EMarkLen = 8;
inline constexpr qsizetype ESumLen = 16;
inline constexpr qsizetype EHeadLen = EMarkLen + 16;
inline constexpr qsizetype EPieceHeadLen = 16 + ESumLen;

template <class T> void Put(QByteArray& aTo, T aNum) {
  char raw[sizeof(T)];
  qToLittleEndian<T>(aNum, raw);
  aTo.append(raw, sizeof(T));
}

template <class T> [[nodiscard]] T Get(const QByteArray& aFrom, qsizetype aAt) {
  return qFromLittleEndian<T>(aFrom.constData() + aAt);
}

[[nodiscard]] inline QByteArray Sum(QByteArrayView aBytes) {
  QCryptographicHash hash(QCryptographicHash::Md5);
  hash.addData(aBytes);
  return hash.result();
}

} // namespace CVelumJournalFormat

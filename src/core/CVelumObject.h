// The base of everything that is shared by counted reference.
#pragma once

#include <QString>
#include <type_traits>
#include <utility>

// Literals u"..."_s are used everywhere.
using namespace Qt::Literals::StringLiterals;

class CVelumFile;
class CVelumXmlParser;
class CVelumXmlWriter;

// An object with a description for assertions, a dirty flag and an intrusive reference count.
// The program has one thread, so the count is a plain number.
class CVelumObject {
public:
  CVelumObject() = default;
  virtual ~CVelumObject() = default;
  CVelumObject(const CVelumObject&) = delete;
  CVelumObject& operator=(const CVelumObject&) = delete;

  // One line of text that tells an assertion which object it is about.
  [[nodiscard]] virtual QString ObjDescr() const = 0;
  // Whether this object, or one that it owns, differs from what the file holds.
  [[nodiscard]] virtual bool Changed() const { return false; }
  // Stores the object's own mark; false also clears the marks of all owned objects.
  virtual void SetChanged(bool aChanged) { static_cast<void>(aChanged); }

  void AddRef() const { ++iRefs; }
  void DropRef() const {
    if (--iRefs == 0) delete this;
  }
  [[nodiscard]] int Refs() const { return iRefs; }

private:
  mutable int iRefs = 0;
};

// An object that can stand in a stack file.
class CVelumStored : public CVelumObject {
public:
  // Reads all members from the present position of aFile; throws on a structural error.
  virtual void Internalize(CVelumFile& aFile) = 0;
  // Writes the same members in the same order.
  virtual void Externalize(CVelumFile& aFile) = 0;
  // The number of bytes that Externalize writes.
  [[nodiscard]] virtual qint64 ExtLen() const = 0;

  // The same in an XML document. The name of the object's element:
  [[nodiscard]] virtual QStringView XmlTag() const = 0;
  [[nodiscard]] bool IsInXml(QStringView aElemName) const { return aElemName == XmlTag(); }
  // Reads the object; its start tag has been read up to the name.
  virtual void InternalizeXml(CVelumXmlParser& aParser) = 0;
  virtual void ExternalizeXml(CVelumXmlWriter& aWriter) = 0;
};

// Counted reference to a CVelumObject; a null Ref is "nothing".
template <class T> class Ref {
public:
  Ref() = default;
  Ref(std::nullptr_t) {}
  Ref(T* aObj) : iObj(aObj) {
    if (iObj) iObj->AddRef();
  }
  Ref(const Ref& aOther) : Ref(aOther.iObj) {}
  Ref(Ref&& aOther) noexcept : iObj(std::exchange(aOther.iObj, nullptr)) {}
  // Only to a base: an object is not taken for more than it is known to be.
  template <class U>
  requires std::is_convertible_v<U*, T*> Ref(const Ref<U>& aOther) : Ref(static_cast<T*>(aOther.Get())) {}
  ~Ref() {
    if (iObj) iObj->DropRef();
  }
  Ref& operator=(Ref aOther) noexcept {
    std::swap(iObj, aOther.iObj);
    return *this;
  }

  // The object with its count, which is the caller's to pass on to Adopt; this becomes nothing.
  [[nodiscard]] T* Detach() { return std::exchange(iObj, nullptr); }
  // Takes over an object with its count.
  [[nodiscard]] static Ref Adopt(T* aCounted) {
    Ref ref;
    ref.iObj = aCounted;
    return ref;
  }
  [[nodiscard]] T* Get() const { return iObj; }
  T* operator->() const { return iObj; }
  T& operator*() const { return *iObj; }
  explicit operator bool() const { return iObj != nullptr; }
  friend bool operator==(const Ref& aA, const Ref& aB) { return aA.iObj == aB.iObj; }
  friend bool operator==(const Ref& aA, const T* aB) { return aA.iObj == aB; }

private:
  T* iObj = nullptr;
};

// A new object of class T in a counted reference.
template <class T, class... Args> [[nodiscard]] Ref<T> MakeRef(Args&&... aArgs) {
  return Ref<T>(new T(std::forward<Args>(aArgs)...));
}

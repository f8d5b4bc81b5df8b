// How a class states its fields once, for store, load and every older version:
//
//     void CTrvThing::Serialize(CArchive& archive) {
//         CSchema schema(archive, 3);            // writes 3, or reads 1 to 3
//         CTrvObject::Serialize(archive);
//         schema.Field(name);
//         schema.Reference(owner);               // somebody else's object
//         schema.Since(2).Field(offset);         // older files leave the member as it is
//         schema.Since(3).Owned(leverArm);
//     }
//
// A class that has had one layout only states its base and its members:
//
//     void CTrvPeriod::Serialize(CArchive& archive) {
//         SerializeUnchanged<CTrvObject>(archive, *this, begin, end);
//     }
//
// A member that an older file does not hold keeps what it has: before loading a version's fields, give such
// members their defaults. A load destroys the objects held before reading new ones.
#pragma once

#include "foundation/archive.h"
#include "foundation/date_time.h"

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Outils_Objets {

class CSchema {
  public:
    // First act of a class's Serialize: the version integer. Throws badSchema for a version below `oldest` or
    // above `current`.
    CSchema(CArchive& archive, std::int32_t current, std::int32_t oldest = 1);

    bool IsLoading() const { return m_archive.IsLoading(); }
    // The version in the file; the current one when storing.
    std::int32_t GetVersion() const { return m_version; }
    CArchive& GetArchive() const { return m_archive; }

    // The next call acts only if the file has at least this version.
    CSchema& Since(std::int32_t version) {
        m_skipNext = m_version < version;
        return *this;
    }

    // Arithmetic values in their own width, enumerations in 32 bits, booleans in one byte, text, dates in 8
    // bytes.
    template <class T>
    void Field(T& value) {
        if (Skip()) return;
        if constexpr (std::is_enum_v<T>) {
            // Without one, a number from a hostile file could be none that the type can hold.
            static_assert(
                requires { T{0}; }, "an archived enumeration needs a fixed underlying type");
            auto number = static_cast<std::int32_t>(value);
            Scalar(number);
            value = static_cast<T>(number);
        } else if constexpr (std::is_arithmetic_v<T>) {
            Scalar(value);
        } else {
            Value(value);
        }
    }
    // A value object in place: its own Serialize bytes, without an object tag.
    void InPlace(CObject& value) {
        if (!Skip()) value.Serialize(m_archive);
    }

    // A pointer to an object that somebody else owns.
    template <class T>
    void Reference(T*& object) {
        if (Skip()) return;
        if (m_archive.IsStoring())
            m_archive.WriteObject(object);
        else
            object = m_archive.ReadObject<std::remove_const_t<T>>();
    }
    template <class T>
    void Owned(std::unique_ptr<T>& object) {
        if (Skip()) return;
        if (m_archive.IsStoring())
            m_archive.WriteObject(object.get());
        else {
            object.reset();
            object = ReadOwned<T>();
        }
    }
    // A 32-bit count and then the objects. A null element throws badIndex: no holder expects one.
    template <class T>
    void OwnedList(std::vector<std::unique_ptr<T>>& objects) {
        if (Skip()) return;
        std::uint32_t count = Count(objects.size());
        if (m_archive.IsStoring()) {
            for (const auto& object : objects) m_archive.WriteObject(object.get());
            return;
        }
        objects.clear();
        for (; count > 0; --count) {
            objects.push_back(ReadOwned<T>());
            if (!objects.back()) AfxThrowArchiveException(CArchiveException::badIndex);
        }
    }

    // Any of the above but an owned object, by the kind of the member.
    template <class T>
    void Member(T& member) {
        if constexpr (std::is_pointer_v<T>)
            Reference(member);
        else if constexpr (std::is_base_of_v<CObject, T>)
            InPlace(member);
        else if constexpr (requires { OwnedList(member); })
            OwnedList(member);
        else
            Field(member);
    }

  private:
    bool Skip() { return std::exchange(m_skipNext, false); }
    template <class T>
    void Scalar(T& value) {
        if (m_archive.IsStoring())
            m_archive << value;
        else
            m_archive >> value;
    }
    void Value(std::string& text);
    void Value(Outils_Temps::CDateTime& date);
    void Value(Outils_Temps::CDateTimeSpan& span);
    std::uint32_t Count(std::size_t count);
    template <class T>
    std::unique_ptr<T> ReadOwned() {
        T* object = m_archive.ReadObject<T>();
        if (!object) return nullptr;
        m_archive.Claim(object).release();
        return std::unique_ptr<T>(object);
    }

    CArchive& m_archive;
    std::int32_t m_version = 0;
    bool m_skipNext = false;
};

// The whole Serialize of a class that is at its first version: the version, then the base, then the members
// in the order given.
template <class Base, class... Members>
void SerializeUnchanged(CArchive& archive, Base& object, Members&... members) {
    CSchema schema(archive, 1);
    object.Base::Serialize(archive);
    (schema.Member(members), ...);
}

} // namespace Outils_Objets

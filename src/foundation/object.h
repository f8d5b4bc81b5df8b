// The root of all persistent objects, with the run-time class information that archives and factories use.
#pragma once

#include <memory>
#include <string_view>
#include <type_traits>
#include <unordered_map>

namespace Outils_Objets {

class CObject;
class CArchive;

// The run-time description of a class. One constant per class, obtained by `Class()`; compared by address.
struct CRuntimeClass {
    std::string_view name;                // the bare class name, as archives write it
    const CRuntimeClass* base;            // null for CObject
    std::unique_ptr<CObject> (*create)(); // null for a class that cannot be made by name

    bool IsDerivedFrom(const CRuntimeClass& other) const;
};

class CObject {
  public:
    virtual ~CObject() = default;

    static const CRuntimeClass& Class();
    virtual const CRuntimeClass& GetRuntimeClass() const { return Class(); }
    bool IsKindOf(const CRuntimeClass& other) const { return GetRuntimeClass().IsDerivedFrom(other); }

    // Writes or reads the object, as the archive's direction says. Throws CArchiveException.
    virtual void Serialize(CArchive& archive);

  protected:
    CObject() = default;
    CObject(const CObject&) = default;
    CObject& operator=(const CObject&) = default;
};

// Gives `Self` its run-time class: derive as `class CThing : public TRuntimeClass<CThing, CBase>` and state
// `static constexpr std::string_view kClassName = "CThing";`. A Self that has a default constructor and is
// not abstract can be made by name.
template <class Self, class Base>
class TRuntimeClass : public Base {
  public:
    using Base::Base;
    using CBaseClass = Base;

    static const CRuntimeClass& Class() {
        static const CRuntimeClass runtimeClass{Self::kClassName, &Base::Class(), Factory()};
        return runtimeClass;
    }
    const CRuntimeClass& GetRuntimeClass() const override { return Class(); }

  protected:
    TRuntimeClass() = default;

  private:
    static auto Factory() -> std::unique_ptr<CObject> (*)() {
        if constexpr (std::is_default_constructible_v<Self>)
            return []() -> std::unique_ptr<CObject> { return std::make_unique<Self>(); };
        else
            return nullptr;
    }
};

// The classes that an archive may make by name. Filled once by the rooms that own the classes, then only
// read; must outlive every loading archive that is given it.
class CClassRegistry {
  public:
    void Register(const CRuntimeClass& runtimeClass) { m_classes.emplace(runtimeClass.name, &runtimeClass); }
    template <class... Classes>
    void Register() {
        (Register(Classes::Class()), ...);
    }

    // Null for a name that nobody registered.
    const CRuntimeClass* Find(std::string_view name) const;

  private:
    std::unordered_map<std::string_view, const CRuntimeClass*> m_classes;
};

// Root of the business objects: version 1, no field.
class CObjetMetier : public TRuntimeClass<CObjetMetier, CObject> {
  public:
    static constexpr std::string_view kClassName = "CObjetMetier";
    void Serialize(CArchive& archive) override;
};

// Root of the objects of this system: version 1, no field.
class CTrvObject : public TRuntimeClass<CTrvObject, CObjetMetier> {
  public:
    static constexpr std::string_view kClassName = "CTrvObject";
    void Serialize(CArchive& archive) override;
};

} // namespace Outils_Objets

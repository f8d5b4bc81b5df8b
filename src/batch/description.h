// The description of objects as indented text. A class is described by a list of rows, kRowsOf<Class>, one
// row for each field of its archive: a new field of the class is one more row.
#pragma once

#include "foundation/texts.h"
#include "model/simulation_time_adaptor.h"
#include "values/adaptors.h"

#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace Batch {

template <class Class>
inline constexpr std::tuple<> kRowsOf;

// The user's way to write values, and a place to write them to.
class CDescription {
  public:
    // All must outlive the object.
    CDescription(std::ostream& out, const Outils_Valeurs::CTrvAdaptors& adaptors,
                 const Metier_Tarvel::CTrvSimulationTimeAdaptor& time,
                 const Metier_Tarvel::CTrvSimulationParameters& parameters)
        : m_adaptors(adaptors), m_time(time), m_parameters(parameters), m_out(out) {}

    void Line(std::string_view label, std::string_view value) {
        m_out << std::string(m_depth * 2, ' ') << label << ": " << value << '\n';
    }
    // Describes an object below a title, one step further in.
    template <class Object>
    void Block(std::string_view title, const Object& object);
    // Every row of the object's class.
    template <class Object>
    void Rows(const Object& object);

    const Outils_Valeurs::CTrvAdaptors& m_adaptors;
    const Metier_Tarvel::CTrvSimulationTimeAdaptor& m_time;
    const Metier_Tarvel::CTrvSimulationParameters& m_parameters;

  private:
    std::ostream& m_out;
    std::size_t m_depth = 0;
};

// The kinds of rows. `label` is the number of a text.

// One value on a line; `format(description, value)` is its text.
template <class Class, class Value, class Format>
struct SField {
    Outils_Texte::EText label;
    Value Class::*member;
    Format format;

    void Write(CDescription& description, const Class& object) const {
        description.Line(Outils_Texte::GetText(label), format(description, object.*member));
    }
};

// The same of a value that the object as a whole gives.
template <class Format>
struct SComputed {
    Outils_Texte::EText label;
    Format format;

    template <class Class>
    void Write(CDescription& description, const Class& object) const {
        description.Line(Outils_Texte::GetText(label), format(description, object));
    }
};

// One line for each element of a list.
template <class Class, class Value, class Format>
struct SLines {
    Outils_Texte::EText label;
    Value Class::*member;
    Format format;

    void Write(CDescription& description, const Class& object) const {
        for (const auto& element : object.*member)
            description.Line(Outils_Texte::GetText(label), format(description, *element));
    }
};

// An object that belongs to this one, or each of a list of them, as a block.
template <class Class, class Value>
struct SOwned {
    Outils_Texte::EText label;
    Value Class::*member;

    void Write(CDescription& description, const Class& object) const { Each(description, object.*member); }

  private:
    template <class Object>
    void Each(CDescription& description, const std::vector<std::unique_ptr<Object>>& list) const {
        for (const auto& element : list) Each(description, element);
    }
    template <class Object>
    void Each(CDescription& description, const std::unique_ptr<Object>& object) const {
        if (object) Each(description, *object);
    }
    template <class Object>
    void Each(CDescription& description, const Object& object) const {
        description.Block(Outils_Texte::GetText(label), object);
    }
};

// What the base class has.
template <class Class>
struct SBase {
    void Write(CDescription& description, const Class& object) const { description.Rows<Class>(object); }
};

// A list of objects of several classes, each as a block below the title of its class.
template <class Class>
struct SKind {
    Outils_Texte::EText title;
};
template <class Class, class Value, class... Kinds>
struct SOwnedOfKinds {
    Value Class::*member;
    std::tuple<SKind<Kinds>...> kinds;

    void Write(CDescription& description, const Class& object) const {
        for (const auto& element : object.*member)
            std::apply([&](const auto&... kind) { (WriteIfOf(description, kind, element.get()), ...); },
                       kinds);
    }

  private:
    template <class Kind, class Element>
    static void WriteIfOf(CDescription& description, const SKind<Kind>& kind, const Element* element) {
        if (const Kind* object = dynamic_cast<const Kind*>(element))
            description.Block(Outils_Texte::GetText(kind.title), *object);
    }
};

template <class Object>
void CDescription::Block(std::string_view title, const Object& object) {
    m_out << std::string(m_depth * 2, ' ') << title << '\n';
    ++m_depth;
    Rows(object);
    --m_depth;
}

template <class Object>
void CDescription::Rows(const Object& object) {
    std::apply([&](const auto&... row) { (row.Write(*this, object), ...); }, kRowsOf<Object>);
}

} // namespace Batch

// One value, one element, one list of a parameter file, each written or read by the same call, so that the
// code describes each part of the file once. All operations throw CParameterFileException on failure; the
// operation on the whole file catches it.
#pragma once

#include "config/xml_document.h"
#include "model/simulation_parameters.h"

#include <exception>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Persistance_Parametres {

using Metier_Tarvel::CTrvDataFile;
using Metier_Tarvel::CTrvDataFileChannel;
using Metier_Tarvel::CTrvPeriod;
using Metier_Tarvel::CTrvSimulationParameters;
using Outils_Temps::CDateTime;

// The file cannot hold a value, or lacks one that it must hold.
class CParameterFileException : public std::exception {
  public:
    const char* what() const noexcept override { return "parameter file"; }
};

// How a number is written as the text of an element.
enum class ENumberText { shortest, general, fixed4, fixed12 };

class CParameterExchange {
  public:
    enum EDirection { store, load };

    // `parameters` gives the time reference of periods and must outlive the exchange.
    CParameterExchange(EDirection direction, const CTrvSimulationParameters& parameters)
        : m_direction(direction), m_parameters(parameters) {}

    bool IsLoading() const { return m_direction == load; }

    // Returns the child of this name: a new one when storing, the first one when loading.
    pugi::xml_node Element(pugi::xml_node parent, const char* name) const;
    // The same for a child that may be missing: null when it is not `wanted`, or missing.
    pugi::xml_node OptionalElement(pugi::xml_node parent, const char* name, bool wanted) const;

    void Attribute(pugi::xml_node element, const char* name, double& value) const;
    void Attribute(pugi::xml_node element, const char* name, std::int32_t& value) const;
    void Attribute(pugi::xml_node element, const char* name, bool& value) const;
    void Attribute(pugi::xml_node element, const char* name, std::string& value) const;
    // The same for an attribute that may be missing: it is not written when it is not `wanted`, and a missing
    // one leaves the value as it is.
    template <class T>
    void OptionalAttribute(pugi::xml_node element, const char* name, T& value, bool wanted) const {
        if (IsLoading() ? !element.attribute(name).empty() : wanted) Attribute(element, name, value);
    }
    // A child element with a number as its text.
    void Text(pugi::xml_node parent, const char* name, double& value, ENumberText form) const;
    void Text(pugi::xml_node parent, const char* name, std::int32_t& value) const;

    void Attributes(pugi::xml_node element, std::span<const char* const> names,
                    std::initializer_list<double*> values) const;
    void Attributes(pugi::xml_node element, Metier_Tarvel::CLeverArm& leverArm) const;
    void Attributes(pugi::xml_node element, Metier_Tarvel::CMisalignment& misalignment) const;
    void Attributes(pugi::xml_node element, Metier_Tarvel::CTrvSpeedBias& bias) const;

    // A length of time that the model holds in a date, in seconds; optional.
    void Seconds(pugi::xml_node element, const char* name, CDateTime& time) const;
    // "from" and "to". Written as dates when there is a UTC reference, else as seconds; read in either form.
    void Period(pugi::xml_node element, CDateTime& begin, CDateTime& end) const;
    void Period(pugi::xml_node element, CTrvPeriod& period) const {
        Period(element, period.begin, period.end);
    }

    // One child of this name for each object. On loading `add` makes the object of each, null for a failure.
    template <class T, class Add, class Each>
    void Elements(pugi::xml_node parent, const char* name, const std::vector<std::unique_ptr<T>>& objects,
                  Add add, Each each) const {
        if (!IsLoading()) {
            for (const auto& object : objects) each(Element(parent, name), *object);
            return;
        }
        for (const pugi::xml_node child : parent.children(name)) {
            if (child.type() != pugi::node_element) continue;
            T* object = add();
            if (!object) Fail();
            each(child, *object);
        }
    }

    // The files with sensor channels, under the ids by which sensors name them.
    void AddFile(std::string id, CTrvDataFile& file) { m_files.emplace_back(std::move(id), &file); }
    // A sensor's channel as file id, point and channel name.
    void Channel(pugi::xml_node element, const char* name, CTrvDataFileChannel*& channel) const;

    [[noreturn]] static void Fail() { throw CParameterFileException(); }

  private:
    void PutAttribute(pugi::xml_node element, const char* name, const std::string& text) const;
    void Time(pugi::xml_node element, const char* name, CDateTime& time) const;

    EDirection m_direction;
    const CTrvSimulationParameters& m_parameters;
    std::vector<std::pair<std::string, CTrvDataFile*>> m_files;
};

} // namespace Persistance_Parametres

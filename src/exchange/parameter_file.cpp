#include "exchange/parameter_file.h"

#include "exchange/parameter_file_exchange.h"
#include "exchange/parameter_file_sensors.h"
#include "foundation/paths.h"

#include <algorithm>
#include <set>

namespace Persistance_Parametres {

using namespace Metier_Tarvel;
using Outils_Fichiers::ToText;
using pugi::xml_node;

namespace {

constexpr const char* kRoot = "morvexParameters";
constexpr const char* kInputFile = "inputFile";
constexpr const char* kOutputFile = "outputFile";

void PutFile(CParameterExchange& exchange, xml_node root, const char* name, std::string id,
             const std::filesystem::path& folder, const CTrvDataFile& file) {
    const xml_node element = exchange.Element(root, name);
    const auto relative = Outils_Fichiers::RelativePathTo(folder, file.path);
    std::string path = relative ? *relative : ToText(file.path);
    exchange.Attribute(element, "id", id);
    exchange.Attribute(element, "path", path);
}

void PutFiles(CParameterExchange& exchange, xml_node root, const std::filesystem::path& folder,
              const CTrvSimulationParameters& parameters) {
    PutFile(exchange, root, kInputFile, "main", folder, *parameters.mainInputFile);
    exchange.AddFile("main", *parameters.mainInputFile);
    int number = 2; // the main file is the first
    for (const auto& file : parameters.externalFiles) {
        std::string id = std::to_string(number++);
        id = (id.size() < 2 ? "file0" : "file") + id;
        PutFile(exchange, root, kInputFile, id, folder, *file);
        exchange.AddFile(std::move(id), *file);
    }
    PutFile(exchange, root, kOutputFile, "output", folder, *parameters.outputFile);
}

void ExchangeIns(const CParameterExchange& exchange, xml_node root, CTrvNelixConfiguration& configuration) {
    const xml_node ins = exchange.Element(root, "ins");
    // A ciphered recording hides the factory misalignment.
    if (const xml_node factory =
            exchange.OptionalElement(ins, "factoryMisalignment", configuration.imuCipherMode == 0))
        exchange.Attributes(factory, *configuration.factoryMisalignment);
    exchange.Text(ins, "roughMisalignment", configuration.roughMisalignment);
    exchange.Attributes(exchange.Element(ins, "fineMisalignment"), *configuration.fineMisalignment);
}

void ExchangePosition(const CParameterExchange& exchange, xml_node processing, CPosition& position) {
    const xml_node element = exchange.Element(exchange.Element(processing, "initialConditions"), "position");
    exchange.Text(element, "latitude", position.latitude, ENumberText::fixed12);
    exchange.Text(element, "longitude", position.longitude, ENumberText::fixed12);
    exchange.Text(element, "altitude", position.altitude, ENumberText::fixed4);
}

void ExchangeHeave(const CParameterExchange& exchange, xml_node processing,
                   CTrvSimulationParameters& parameters) {
    const xml_node heave =
        exchange.OptionalElement(processing, "heaveCalculation", parameters.heaveAlgorithm != heaveNone);
    if (!heave) {
        parameters.heaveAlgorithm = heaveNone;
        return;
    }
    exchange.Attribute(heave, "algorithm", parameters.heaveAlgorithm);
    // The other algorithms need neither; a file may hold them all the same.
    const bool realTime = parameters.heaveAlgorithm == heaveRealTime;
    CLeverArm& leverArm = *parameters.nelixConfiguration->cogLeverArm;
    if (realTime) {
        exchange.Attribute(heave, "seaState", parameters.heaveSeaState);
        exchange.Attributes(exchange.Element(heave, "cogLeverArm"), leverArm);
    } else {
        exchange.OptionalAttribute(heave, "seaState", parameters.heaveSeaState, false);
        if (const xml_node element = exchange.OptionalElement(heave, "cogLeverArm", false))
            exchange.Attributes(element, leverArm);
    }
}

CTrvSensorDvl* FindDvl(const CTrvSimulationParameters& parameters) {
    for (const auto& sensor : parameters.sensors)
        if (sensor->GetKind().kind == ESensorKind::dvl) return static_cast<CTrvSensorDvl*>(sensor.get());
    return nullptr;
}

// Written of the DVL; read into the DVL and into the unit's configuration, which has a copy.
void ExchangeCurrent(const CParameterExchange& exchange, xml_node processing,
                     CTrvSimulationParameters& parameters) {
    CTrvSensorDvl* dvl = FindDvl(parameters);
    CTrvCurrentModeling* ofDvl = dvl ? dvl->currentModeling.get() : nullptr;
    const xml_node element = exchange.OptionalElement(processing, "currentModeling", ofDvl != nullptr);
    if (!element) return;
    CTrvCurrentModeling& current =
        exchange.IsLoading() ? *parameters.nelixConfiguration->currentModeling : *ofDvl;
    exchange.Text(element, "sigma", current.sigma, ENumberText::general);
    exchange.Text(element, "time", current.time, ENumberText::general);
    if (!exchange.IsLoading() || !ofDvl) return;
    ofDvl->sigma = current.sigma;
    ofDvl->time = current.time;
}

// Behind the sensors, of which it needs the DVL.
void ExchangeProcessing(const CParameterExchange& exchange, xml_node root,
                        CTrvSimulationParameters& parameters) {
    const xml_node processing = exchange.Element(root, "processing");
    exchange.Attribute(processing, "algorithm", parameters.algorithm);
    exchange.Attribute(processing, "gpsAltitudeReference", parameters.gpsAltitudeReference);
    exchange.Period(processing, parameters.begin, parameters.end);
    ExchangePosition(exchange, processing, parameters.referencePosition);
    ExchangeHeave(exchange, processing, parameters);
    ExchangeCurrent(exchange, processing, parameters);
    const auto mode = [&](xml_node element, CTrvModePeriod& instruction) {
        exchange.Attribute(element, "mode", instruction.mode);
        exchange.Period(element, instruction);
    };
    exchange.Elements(
        processing, "zupt", parameters.zupts, [&] { return parameters.AddZupt(); }, mode);
    exchange.Elements(
        processing, "altitudeMode", parameters.altitudeModes, [&] { return parameters.AddAltitudeMode(); },
        mode);
}

void ExchangeOutput(const CParameterExchange& exchange, xml_node root, CTrvSimulationParameters& parameters) {
    const xml_node output = exchange.Element(root, "output");
    CTrvNelixConfiguration& configuration = *parameters.nelixConfiguration;
    exchange.Attribute(output, "defaultRate", parameters.defaultOutputRate);
    exchange.Attributes(exchange.Element(output, "misalignment"), *configuration.userMisalignment);
    const std::pair<const char*, CLeverArm*> leverArms[] = {
        {"primary", configuration.primaryLeverArm.get()},
        {"secondary-a", configuration.secondaryLeverArmA.get()},
        {"secondary-b", configuration.secondaryLeverArmB.get()},
        {"secondary-c", configuration.secondaryLeverArmC.get()}};
    for (const auto& [id, leverArm] : leverArms) {
        xml_node element;
        if (exchange.IsLoading()) {
            element = output.find_child_by_attribute("leverArm", "id", id);
            if (!element) CParameterExchange::Fail();
        } else {
            std::string text = id;
            element = exchange.Element(output, "leverArm");
            exchange.Attribute(element, "id", text);
        }
        exchange.Attributes(element, *leverArm);
    }
    exchange.Elements(
        output, "rate", parameters.outputRates, [&] { return parameters.AddOutputRate(); },
        [&](xml_node element, CTrvOutputRate& rate) {
            exchange.Attribute(element, "value", rate.value);
            exchange.Period(element, rate);
        });
}

void ExchangeAllButFiles(const CParameterExchange& exchange, xml_node root,
                         CTrvSimulationParameters& parameters) {
    ExchangeIns(exchange, root, *parameters.nelixConfiguration);
    ExchangeSensors(exchange, root, parameters);
    ExchangeProcessing(exchange, root, parameters);
    ExchangeOutput(exchange, root, parameters);
}

void Write(const std::filesystem::path& path, CTrvSimulationParameters& parameters) {
    pugi::xml_document document;
    xml_node declaration = document.append_child(pugi::node_declaration);
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "iso-8859-1";
    CParameterExchange exchange(CParameterExchange::store, parameters);
    const xml_node root = exchange.Element(document, kRoot);
    PutFiles(exchange, root, path.parent_path(), parameters);
    ExchangeAllButFiles(exchange, root, parameters);
    if (!Outils_Configuration::SaveXmlDocument(document, path, kMaximumParameterFileSize))
        CParameterExchange::Fail();
}

} // namespace

bool WriteParameterFile(const std::filesystem::path& path, const CTrvSimulationParameters& parameters) {
    std::error_code error;
    const auto absolute = std::filesystem::absolute(path, error);
    if (error) return false;
    try {
        // An exchange that stores changes nothing.
        Write(absolute, const_cast<CTrvSimulationParameters&>(parameters));
    } catch (const std::exception&) {
        return false;
    }
    return true;
}

CParameterFileReader::CParameterFileReader() = default;
CParameterFileReader::~CParameterFileReader() = default;

bool CParameterFileReader::Load(const std::filesystem::path& path) {
    m_document.reset();
    m_files.clear();
    std::error_code error;
    const auto absolute = std::filesystem::absolute(path, error);
    if (error) return false;
    try {
        m_document = Outils_Configuration::LoadXmlDocument(absolute, kMaximumParameterFileSize);
        if (m_document) ReadFiles(absolute.parent_path());
    } catch (const std::exception&) {
        m_document.reset();
        m_files.clear();
    }
    return m_document != nullptr;
}

void CParameterFileReader::ReadFiles(const std::filesystem::path& folder) {
    const CTrvSimulationParameters none;
    const CParameterExchange exchange(CParameterExchange::load, none);
    const xml_node root = exchange.Element(*m_document, kRoot);
    std::set<std::string> ids;
    const auto read = [&](xml_node element, bool isOutput) {
        SParameterFileRow row;
        std::string path;
        exchange.Attribute(element, "id", row.id);
        exchange.Attribute(element, "path", path);
        if (!ids.insert(row.id).second) CParameterExchange::Fail();
        // No path is no file; joined, it would become the folder.
        const bool complete = !path.empty() && Outils_Fichiers::IsRelativePath(path);
        row.path = complete ? Outils_Fichiers::Combine(folder, path) : Outils_Fichiers::FromText(path);
        row.isOutput = isOutput;
        m_files.push_back(std::move(row));
    };
    for (const xml_node element : root.children(kInputFile))
        if (element.type() == pugi::node_element) read(element, false);
    if (m_files.empty()) CParameterExchange::Fail();
    read(exchange.Element(root, kOutputFile), true);
}

std::unique_ptr<CTrvSimulationParameters> CParameterFileReader::Read(const CChosenPaths& chosen,
                                                                     CDateTime utcReference) const {
    if (!m_document) return nullptr;
    const auto pathOf = [&](const SParameterFileRow& row) {
        const auto found = chosen.find(row.id);
        return found == chosen.end() ? row.path : found->second;
    };
    try {
        auto parameters =
            std::make_unique<CTrvSimulationParameters>(pathOf(m_files.front()), pathOf(m_files.back()));
        if (utcReference.IsValid()) parameters->SetUtcReference(utcReference, {});
        CParameterExchange exchange(CParameterExchange::load, *parameters);
        const xml_node root = exchange.Element(*m_document, kRoot);
        auto row = m_files.begin();
        for (const xml_node element : root.children(kInputFile)) {
            if (element.type() != pugi::node_element) continue;
            CTrvDataFile* file = parameters->mainInputFile.get();
            if (row != m_files.begin()) {
                file = parameters->AddDataFile(pathOf(*row));
                if (!file) CParameterExchange::Fail();
                exchange.Seconds(element, "timeOffset", file->timeOffset);
            }
            exchange.AddFile((row++)->id, *file);
        }
        ExchangeAllButFiles(exchange, root, *parameters);
        return parameters;
    } catch (const std::exception&) {
        return nullptr;
    }
}

} // namespace Persistance_Parametres

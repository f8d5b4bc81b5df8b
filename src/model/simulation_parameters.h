// The complete description of one processing run: what to read, when, how, and what to output.
#pragma once

#include "model/data_file.h"
#include "model/nelix_configuration.h"
#include "model/sensors.h"
#include "model/words.h"

#include <list>

namespace Outils {
class CEvent;
}

namespace Metier_Tarvel_Regles {
class CTrvRule;
class CTrvRuleReport;
} // namespace Metier_Tarvel_Regles

namespace Metier_Tarvel {

// Owns all that it points to. UI thread only, except for an object that only the calling thread knows.
class CTrvSimulationParameters : public TRuntimeClass<CTrvSimulationParameters, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrvSimulationParameters";

    std::int32_t algorithm = 0;            // EWordList::algorithm
    std::int32_t heaveAlgorithm = 0;       // EWordList::heaveAlgorithm
    std::int32_t heaveSeaState = 0;        // EWordList::heaveSeaState
    std::int32_t gpsAltitudeReference = 0; // EWordList::gpsAltitudeReference
    CPosition referencePosition;
    double defaultOutputRate = 1.0; // hertz
    CDateTime begin;                // of the simulation, in simulation time
    CDateTime end;
    std::vector<std::unique_ptr<CTrvOutputRate>> outputRates;
    std::vector<std::unique_ptr<CTrvZupt>> zupts;
    std::vector<std::unique_ptr<CTrvAltitudeMode>> altitudeModes;
    std::vector<std::unique_ptr<CTrvSensor>> sensors; // in creation order
    std::unique_ptr<CTrvNelixConfiguration> nelixConfiguration;
    std::unique_ptr<CTrvDataFile> mainInputFile; // never null
    std::unique_ptr<CTrvDataFile> outputFile;    // never null
    std::vector<std::unique_ptr<CTrvDataFile>> externalFiles;
    std::vector<std::unique_ptr<Metier_Tarvel_Regles::CTrvRule>> rules; // always the 18, not archived
    bool hasUtcReference = false;
    CDateTime utcReference;        // the UTC date of tick 0 of the simulation time
    std::int32_t imuFrequency = 0; // hertz, as MeasureImuFrequency gave it; not archived

    // What an archive starts from.
    CTrvSimulationParameters();
    // A new run over a recording; reads the channels of the main file if it can be opened.
    CTrvSimulationParameters(std::filesystem::path mainPath, std::filesystem::path outputPath);
    ~CTrvSimulationParameters() override;

    // Reads the single object of a parameter file, with all it refers to; null when the file holds null.
    // Throws CArchiveException, and then leaves no object. Storing is archive.WriteObject.
    static std::unique_ptr<CTrvSimulationParameters> Load(CArchive& archive);

    // Runs every rule; true when all hold. `report` then has every violation.
    bool Validate(Metier_Tarvel_Regles::CTrvRuleReport& report) const;

    // utcReference = first - second, known from now on.
    void SetUtcReference(CDateTime first, CDateTimeSpan second);

    // A new external file, with its channels read. Null when a file of any role has this path already
    // (without regard to case) or the header cannot be read.
    CTrvDataFile* AddDataFile(const std::filesystem::path& path);
    // True when a file of any role has this path.
    bool HasDataFile(const std::filesystem::path& path) const;
    // Deletes an external file that nobody refers to; false for any other.
    bool RemoveDataFile(const CTrvDataFile* file);
    // Main input, output, then the external files in order; includes no null.
    std::vector<CTrvDataFile*> GetDataFiles() const;

    // Sensors of this kind in the project.
    int CountSensors(ESensorKind kind) const;
    bool CanAddSensor(ESensorKind kind) const;
    // A new sensor on the main input file's first channel of this kind. Null when the maximum is reached or
    // there is no such channel.
    CTrvSensor* AddSensor(ESensorKind kind);
    // The same by class: AddSensor<CTrvSensorGps>().
    template <class Sensor>
    Sensor* AddSensor() {
        return static_cast<Sensor*>(AddSensor(Sensor::kKind));
    }
    bool RemoveSensor(const CTrvSensor* sensor);

    CTrvOutputRate* AddOutputRate();
    CTrvZupt* AddZupt();
    // False for the equipment codes 13, 14, 15 and 18.
    bool HasAltitudeAid() const;
    // Null without an altitude aid.
    CTrvAltitudeMode* AddAltitudeMode();
    // Each deletes the object; false if it is not in the list.
    bool RemoveOutputRate(const CTrvOutputRate* rate);
    bool RemoveZupt(const CTrvZupt* zupt);
    bool RemoveAltitudeMode(const CTrvAltitudeMode* altitudeMode);

    // Takes position, sea state, INS configuration and the connected sensors from a configuration file of the
    // INS: an INI file, or an embedded configuration that is open. Sensors whose data the recording lacks are
    // passed over. False for a value that is missing and required or does not convert; the project is then of
    // no use.
    bool ImportIniConfiguration(const std::filesystem::path& path);
    bool ImportWebConfiguration(const CInsWebConfigurationFile& file);

    // Dates of the first and last IMU packets of the main input file; false when it has none, or once the
    // event is set.
    bool ReadTimeSpan(CDateTimeSpan& first, CDateTimeSpan& last,
                      const Outils::CEvent* interrupt = nullptr) const;
    // Equipment code in the first IMU packet of the main input file; false as above.
    bool ReadEquipmentCode(std::int32_t& code, const Outils::CEvent* interrupt = nullptr) const;

    void Serialize(CArchive& archive) override;

    // Second half of a load, once the outermost object has been read: gives the data files their channels,
    // sets every back pointer, and keeps what others refer to though no list holds it. Throws badIndex for
    // what cannot be used.
    void Settle(std::vector<std::unique_ptr<Outils_Objets::CObject>> unclaimed);

  private:
    void Clear();

    std::vector<std::unique_ptr<Outils_Objets::CObject>>
        m_kept; // referred to by channels and curves of odd projects
};

} // namespace Metier_Tarvel

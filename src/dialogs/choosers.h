// What the choosers of a data file and of a channel list. The pointers are those of the project: a list holds
// until its next edit. UI thread.
#pragma once

#include "foundation/texts.h"
#include "model/simulation_parameters.h"

#include <optional>
#include <string>
#include <vector>

namespace Dialogue_Tarvel {

using Outils_Texte::EText;

// Rows, of which one or none is selected.
template <class Row>
class TChooser {
  public:
    const std::vector<Row>& GetRows() const { return m_rows; }
    std::optional<std::size_t> GetSelection() const { return m_selection; }
    // A row that is not in the list selects none.
    void Select(std::optional<std::size_t> row) { m_selection = row < m_rows.size() ? row : std::nullopt; }
    // The selected row; null without a selection, and the chooser then stays open.
    const Row* OnOK() const { return m_selection ? &m_rows[*m_selection] : nullptr; }

  protected:
    std::vector<Row> m_rows;
    std::optional<std::size_t> m_selection;
};

enum class EDataFileRole { mainInput, output, external };

struct SDataFileRow {
    EDataFileRole role; // selects the icon
    std::string name;
    std::string folder;
    Metier_Tarvel::CTrvDataFile* file;
};

class CDataFileChooser : public TChooser<SDataFileRow> {
  public:
    static constexpr EText kColumns[] = {EText::fileNameColumn, EText::folderColumn};

    // Every file of the project: main input, output, external files.
    explicit CDataFileChooser(const Metier_Tarvel::CTrvSimulationParameters& parameters,
                              std::optional<std::size_t> selection = std::nullopt);
};

struct SChannelRow {
    std::string channel;
    std::string file;
    Metier_Tarvel::CTrvDataFileChannel* data;
};

class CDataFileChannelChooser : public TChooser<SChannelRow> {
  public:
    static constexpr EText kColumns[] = {EText::channelColumn, EText::fileColumn};

    // The channels of the sensor's class in the main input file and the external files; its present one is
    // selected.
    CDataFileChannelChooser(const Metier_Tarvel::CTrvSimulationParameters& parameters,
                            const Metier_Tarvel::CTrvSensor& sensor);
};

} // namespace Dialogue_Tarvel

// A folder with a recording, its parameter file and the result of a run.
#pragma once

#include "common/run_monitor.h"
#include "foundation/archive.h"
#include "foundation/files.h"
#include "foundation/text_id.h"
#include "model/simulation_parameters.h"
#include "simulator/mission_writer.h"
#include "support/temporary_folder.h"
#include "xpf/packets.h"
#include "xpf/table_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace Morvex {

using Compagnon::ELevel;
using Compagnon::IRunMonitor;
using Outils_Texte::EText;

class CListeningMonitor : public IRunMonitor {
  public:
    struct SMessage {
        ELevel level;
        EText code;
        std::string text;
    };
    std::vector<SMessage> messages;
    std::vector<double> progress;
    std::function<bool()> goOn = [] { return true; };

    void Progress(double percent) override { progress.push_back(percent); }
    void Message(ELevel level, EText code, std::string_view text) override {
        messages.push_back({level, code, std::string(text)});
    }
    bool GoOn() override { return goOn(); }
    bool Has(EText code) const {
        return std::ranges::any_of(messages,
                                   [code](const SMessage& message) { return message.code == code; });
    }
};

class CRunFolder {
  public:
    std::filesystem::path Input() const { return m_folder / "in.tarin"; }
    std::filesystem::path Output() const { return m_folder / "out.tarout"; }
    std::filesystem::path Parameters() const { return m_folder / "run.dat"; }

    void Simulate(const Simulation::SMissionOptions& options) const {
        std::string error;
        ASSERT_TRUE(Simulation::WriteMission(options, Input(), {}, error)) << error;
    }
    // The parameters of a run over the recording, with its GPS.
    std::unique_ptr<Metier_Tarvel::CTrvSimulationParameters> MakeParameters() const {
        auto parameters = std::make_unique<Metier_Tarvel::CTrvSimulationParameters>(Input(), Output());
        parameters->AddSensor(Metier_Tarvel::ESensorKind::gps);
        return parameters;
    }
    void Store(const Outils_Objets::CObject& object) const {
        Outils_Objets::CMemoryStream stream;
        Outils_Objets::CArchive archive(stream, Outils_Objets::CArchive::store, nullptr, Parameters());
        archive.WriteObject(&object);
        archive.Close();
        ASSERT_TRUE(Outils_Fichiers::WriteWholeFile(Parameters(), stream.GetBytes()));
    }
    // Every packet of a channel of the result.
    template <class Packet>
    std::vector<Packet> ReadResult(std::string_view channelName) const {
        std::vector<Packet> packets;
        Persistance_Xpf::CXpfTaroutFileV2 file;
        bool outdated = false;
        Persistance_Xpf::CXpfFile::HeaderBuffer buffer;
        if (!file.Open(Output()) || !file.ReadFileHeader(outdated, buffer)) return packets;
        Persistance_Xpf::CXpfChannel* channel = file.FindChannelByName(channelName);
        Packet packet;
        while (channel && channel->ReadNextPacket(packet)) packets.push_back(packet);
        return packets;
    }

  private:
    test::CTemporaryFolder m_folder;
};

} // namespace Morvex

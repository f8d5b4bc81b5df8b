#include "model/data_file.h"

#include "foundation/paths.h"
#include "foundation/serialize.h"
#include "foundation/text.h"
#include "model/simulation_parameters.h"
#include "xpf/file.h"

#include <algorithm>
#include <cstring>

namespace Metier_Tarvel {

using Outils_Objets::AfxThrowArchiveException;
using Outils_Objets::CArchiveException;
using Outils_Objets::CSchema;
using Outils_Objets::SerializeUnchanged;

namespace {

// The folder from which an archive's relative paths lead; empty for an archive in memory.
std::filesystem::path FolderOf(const CArchive& archive) {
    const std::filesystem::path& file = archive.GetFilePath();
    if (file.empty()) return {};
    std::error_code error;
    return std::filesystem::absolute(file, error).parent_path();
}

template <class Match>
CTrvDataFileChannel* FindFirst(const CTrvDataFile& file, Match match) {
    const auto found = std::find_if(file.channels.begin(), file.channels.end(),
                                    [&match](const auto& channel) { return match(*channel); });
    return found == file.channels.end() ? nullptr : found->get();
}

} // namespace

void CTrvDataFileChannel::Serialize(CArchive& archive) {
    SerializeUnchanged<CTrvObject>(archive, *this, file, id, name, sensorClass);
}

bool CTrvDataFile::IsReferenced() const {
    if (!owner) return false;
    if (owner->mainInputFile.get() == this || owner->outputFile.get() == this) return true;
    return std::any_of(owner->sensors.begin(), owner->sensors.end(), [this](const auto& sensor) {
        return sensor->channel && sensor->channel->file == this;
    });
}

void CTrvDataFile::AddChannel(std::uint16_t id, std::string name, std::string sensorClass) {
    auto channel = std::make_unique<CTrvDataFileChannel>();
    channel->file = this;
    channel->id = id;
    channel->name = std::move(name);
    channel->sensorClass = std::move(sensorClass);
    channels.push_back(std::move(channel));
}

CTrvDataFileChannel* CTrvDataFile::FindChannelForSensor(const CTrvSensor& sensor) const {
    const std::string_view sensorClass = sensor.GetRuntimeClass().name;
    return FindFirst(*this,
                     [&](const CTrvDataFileChannel& channel) { return channel.sensorClass == sensorClass; });
}

CTrvDataFileChannel* CTrvDataFile::FindChannel(std::uint16_t id) const {
    return FindFirst(*this, [&](const CTrvDataFileChannel& channel) { return channel.id == id; });
}

CTrvDataFileChannel* CTrvDataFile::FindChannel(std::string_view name) const {
    return FindFirst(*this, [&](const CTrvDataFileChannel& channel) { return channel.name == name; });
}

bool CTrvDataFile::ReadChannels() {
    using namespace Persistance_Xpf;
    CXpfFile file;
    CXpfFile::HeaderBuffer header;
    if (!file.Open(path) || file.Read(header.data(), header.size()) != header.size()) return false;

    std::uint16_t count = 0;
    std::memcpy(&count, header.data() + kChannelCountOffset, sizeof count);
    for (; count > 0; --count) {
        constexpr std::size_t kNameOffset = 2;
        constexpr std::size_t kTypeOffset = kNameOffset + kChannelNameSize + kChannelDescriptionSize;
        static_assert(kTypeOffset + sizeof(std::uint16_t) == kChannelRecordSize);
        std::array<char, kChannelRecordSize> record;
        if (file.Read(record.data(), record.size()) != record.size()) return false;

        std::uint16_t id = 0;
        std::uint16_t type = 0;
        std::memcpy(&id, record.data(), sizeof id);
        std::memcpy(&type, record.data() + kTypeOffset, sizeof type);
        const std::string_view name =
            Outils_Texte::TrimAtZero({record.data() + kNameOffset, kChannelNameSize});
        const SSensorKind* kind = FindSensorKindOfChannel(type);
        AddChannel(id, Outils_Texte::Windows1252ToUtf8(name), std::string(kind ? kind->className : ""));
    }
    return true;
}

void CTrvDataFile::Serialize(CArchive& archive) {
    CSchema schema(archive, 3);
    CTrvObject::Serialize(archive);
    schema.Reference(owner);
    SerializePath(archive, schema.GetVersion());

    auto count = static_cast<std::uint32_t>(channels.size());
    schema.Field(count);
    if (archive.IsStoring()) {
        for (const auto& channel : channels) archive.WriteObject(channel.get());
    } else {
        channels.clear();
        m_readChannels.clear();
        for (; count > 0; --count) {
            m_readChannels.push_back(archive.ReadObject<CTrvDataFileChannel>());
            if (!m_readChannels.back()) AfxThrowArchiveException(CArchiveException::badIndex);
        }
        timeOffset = CDateTime();
    }
    schema.Since(2).Field(timeOffset);
}

void CTrvDataFile::SerializePath(CArchive& archive, std::int32_t version) {
    using namespace Outils_Fichiers;
    const std::filesystem::path folder = FolderOf(archive);
    if (archive.IsStoring()) {
        const auto relative = folder.empty() ? std::nullopt : RelativePathTo(folder, path);
        archive.WriteString(relative ? *relative : ToText(path));
        return;
    }
    const std::string text = archive.ReadString();
    // An empty path means no file; joined, it would become the project's folder.
    const bool resolve = version >= 3 && !text.empty() && !folder.empty() && IsRelativePath(text);
    path = resolve ? Combine(folder, text) : FromText(text);
}

void CTrvDataFile::AdoptChannels(CUnclaimed& unclaimed) {
    for (CTrvDataFileChannel* channel : std::exchange(m_readChannels, {})) {
        auto found = unclaimed.extract(channel);
        if (!found) AfxThrowArchiveException(CArchiveException::badIndex);
        found.mapped().release();
        channels.emplace_back(channel);
        channel->file = this;
    }
}

} // namespace Metier_Tarvel

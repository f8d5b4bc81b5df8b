// Sources of the converters: the first byte says which converter, the second which form of its switches, the
// third where the source is cut into two files. VARNE_FUZZ_READER="first last", rows of the table of
// converters, keeps the run on these: each reader then gets its whole time.
#include "input.h"

#include "convert/conversion.h"
#include "xpf/stream_walk.h"
#include "xpf/table_file.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace {

struct CSilentMonitor : Compagnon::IRunMonitor {
    void Progress(double percent) override {
        Fuzz::Require(percent >= 0 && percent <= 100, "progress is a share");
    }
    void Message(Compagnon::ELevel, Outils_Texte::EText, std::string_view text) override {
        Fuzz::Require(!text.empty(), "messages say something");
    }
    bool GoOn() override { return true; }
};

// The converter that the first byte chooses, among those of the environment.
const Conversion::SConverter& Choose(std::uint8_t choice) {
    static const auto rows = [] {
        unsigned first = 0, last = Conversion::kConverterCount - 1;
        const char* text = std::getenv("VARNE_FUZZ_READER");
        if (text)
            Fuzz::Require(std::sscanf(text, "%u %u", &first, &last) == 2 && first <= last &&
                              last < Conversion::kConverterCount,
                          "VARNE_FUZZ_READER names two rows");
        return std::pair(first, last - first + 1);
    }();
    return Conversion::GetConverters()[rows.first + choice % rows.second];
}

// A value for each switch of the converter, by the bits of the form.
std::vector<std::string> MakeLine(const Conversion::SConverter& converter, unsigned form) {
    std::vector<std::string> line;
    for (const auto& row : converter.switches) {
        const bool second = (form & 1) != 0, given = (form & 2) != 0;
        form >>= 1;
        if (!given || row.name == "/o") continue;
        line.emplace_back(row.name);
        if (row.kind == Outils_Texte::ESwitchValue::word) {
            const std::size_t bar = row.value.find('|');
            line.emplace_back(second && bar != std::string_view::npos ? row.value.substr(bar + 1)
                                                                      : row.value.substr(0, bar));
            line.back() = line.back().substr(0, line.back().find('|'));
        } else if (row.kind == Outils_Texte::ESwitchValue::text) {
            line.emplace_back(second ? "2024-05-14" : "none");
        } else {
            line.emplace_back(second ? "60" : "1");
        }
    }
    return line;
}

// What is written is a whole recording in order of date.
void Check(const std::filesystem::path& target) {
    using namespace Persistance_Xpf;
    const auto file = OpenXpfFile(target, EFileKind::tarin).file;
    Fuzz::Require(file && file->Seek(file->GetDataStart().Get()), "the target is a recording");
    SPacketHeader header;
    std::span<const std::uint8_t> payload;
    std::int64_t before = INT64_MIN;
    for (CStreamWalk walk(*file); walk.Next(header, payload) == EPacketRead::whole;) {
        std::int64_t date;
        std::memcpy(&date, payload.data(), sizeof date);
        Fuzz::Require(date >= before, "dates ascend");
        before = date;
    }
    Fuzz::Require(file->GetPosition() == file->GetFileSize(), "the target is whole");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 3) return 0;
    static Fuzz::CMemoryFile first, second;
    static const Fuzz::CScratchFolder folder;
    const auto& converter = Choose(data[0]);
    const std::size_t cut = converter.manySources ? std::min<std::size_t>(data[2], size - 3) : size - 3;
    first.Set({data + 3, cut});
    second.Set({data + 3 + cut, size - 3 - cut});

    std::vector<std::string> line = MakeLine(converter, data[1]);
    line.push_back(first.GetPath());
    if (converter.manySources) line.push_back(second.GetPath());
    line.push_back(folder / "target.tarin");
    Compagnon::CArguments arguments;
    std::string error;
    Fuzz::Require(arguments.Parse(converter.switches, line, error), "the line is one");
    CSilentMonitor monitor;
    if (Conversion::Convert(converter, arguments, monitor) == Compagnon::ERunEnd::finished)
        Check(folder / "target.tarin");
    return 0;
}

#include "dialogs/export_sources.h"

#include "foundation/files.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "model/simulation_parameters.h"

#include <pugixml.hpp>

#include <algorithm>

namespace Dialogue_Tarvel {

using Outils_Fichiers::ToText;
using Outils_Texte::EText;
using Outils_Texte::GetText;

namespace {

constexpr std::string_view kInput = "input", kResult = "output", kExternal = "external";
constexpr std::uint64_t kLargestTemplate = 1u << 20;
constexpr std::size_t kLongestExtension = 16;

std::string CleanExtension(std::string_view text) {
    while (text.starts_with('.') || text.starts_with('*')) text.remove_prefix(1);
    const bool isPlain =
        text.size() <= kLongestExtension && std::ranges::all_of(text, [](char c) {
            return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
        });
    return isPlain ? std::string(text) : std::string();
}

SExportSource MakeSource(const Metier_Tarvel::CTrvDataFile& file, std::string word, EText role,
                         bool isResult) {
    SExportSource made{file.path,
                       std::move(word),
                       std::string(GetText(role)) + ": " + ToText(file.path.filename()),
                       isResult,
                       {},
                       Metier_Tarvel::ToSpan(file.timeOffset)};
    for (const auto& channel : file.channels) made.channels.push_back(channel->name);
    return made;
}

} // namespace

SExportProject GetExportProject(const Metier_Tarvel::CTrvSimulationParameters& parameters) {
    SExportProject project{{}, &parameters};
    project.sources.push_back(
        MakeSource(*parameters.mainInputFile, std::string(kInput), EText::inputFile, false));
    project.sources.push_back(
        MakeSource(*parameters.outputFile, std::string(kResult), EText::outputFile, true));
    for (const auto& file : parameters.externalFiles)
        project.sources.push_back(
            MakeSource(*file, std::string(kExternal) + std::to_string(project.sources.size() - 1),
                       EText::externalFile, false));
    return project;
}

STemplateMetadata ReadTemplateMetadata(const std::filesystem::path& exportTemplate) {
    const auto bytes = Outils_Fichiers::ReadWholeFile(exportTemplate, kLargestTemplate);
    pugi::xml_document document;
    if (!bytes || !document.load_buffer(bytes->data(), bytes->size())) return {};
    const auto extension = document.select_node("exportTemplate/recommendedExtension").node();
    const auto input = document.select_node("exportTemplate/primaryInput").node();
    return {CleanExtension(extension.text().get()), input.attribute("primaryChannel").value()};
}

} // namespace Dialogue_Tarvel

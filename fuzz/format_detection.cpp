// Files of any kind, as they are given to the format detection.
#include "dataaccess/format_detection.h"

#include "foundation/text_id.h"
#include "input.h"

using namespace Application_Tarvel;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Fuzz::CMemoryFile input;
    input.Set({data, size});
    const Outils_Valeurs::CDateTimeAdaptor dates;
    const EFileFormat inMemory = DetectFormat(Fuzz::AsText({data, size}), dates);
    int code = -1;
    Fuzz::Require(DetectFileFormat(input.GetPath(), code, dates), "a regular file can be looked at");
    Fuzz::Require(code == inMemory, "the head of a file is all that counts");
    Fuzz::Require(Outils_Texte::GetText(GetFormatText(code)).size() > 1, "every format has a name");
    return 0;
}

// A converter of foreign recordings as a program; VARNE_CONVERTER is its row.
#include "convert/conversion.h"

int main(int count, char** arguments) {
    return Compagnon::RunMain(Conversion::MakeProgram(Conversion::GetConverters()[VARNE_CONVERTER]), count,
                              arguments);
}

#include "update/updater_program.h"

int main(int count, char** arguments) {
    return Compagnon::RunMain(MiseANiveau::kFileUpdater, count, arguments);
}

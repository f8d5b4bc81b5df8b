#include "model/imu_channel.h"
#include "model/simulation_parameters.h"

namespace Metier_Tarvel {

bool CTrvSimulationParameters::ReadTimeSpan(CDateTimeSpan& first, CDateTimeSpan& last,
                                            const Outils::CEvent* interrupt) const {
    CImuChannel imu;
    CDateTimeSpan firstDate, lastDate;
    if (!imu.Open(mainInputFile->path, interrupt) || !imu.ReadFirst() || !imu.GetDate(firstDate) ||
        !imu.ReadLast() || !imu.GetDate(lastDate))
        return false;
    first = firstDate;
    last = lastDate;
    return true;
}

bool CTrvSimulationParameters::ReadEquipmentCode(std::int32_t& code, const Outils::CEvent* interrupt) const {
    return ReadImuEquipment(mainInputFile->path, code, interrupt);
}

} // namespace Metier_Tarvel

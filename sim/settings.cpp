#include "sim/settings.hpp"

namespace morvath::sim
{

void apply(const Setting& setting)
{
    setting.service.change(setting.path, setting.interface, setting.property,
                           setting.value);
}

} // namespace morvath::sim

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "raid/vontel.hpp"

#include <array>
#include <memory>

namespace morvath::sim
{

/**
 * The platform's RAID management library, loaded when it is there: the
 * program itself has to run on a platform without one. Operations are as in
 * raid/vontel.hpp.
 */
class VontelLibrary
{
  public:
    /**
     * @return nothing on a platform without it
     * @throws std::runtime_error  it is there but cannot be used
     */
    static std::unique_ptr<VontelLibrary> load();

    decltype(&vontel::checkRaidMgrExist) checkRaidMgrExist;
    decltype(&vontel::getRaidIdList) getRaidIdList;
    decltype(&vontel::getRaidInfoById) getRaidInfoById;
    decltype(&vontel::getPhyDevIdList) getPhyDevIdList;
    decltype(&vontel::getPhyDevInfoById) getPhyDevInfoById;
    decltype(&vontel::getLogDevIdList) getLogDevIdList;
    decltype(&vontel::getLogDevInfoById) getLogDevInfoById;
    decltype(&vontel::getRaidConf) getRaidConf;
    decltype(&vontel::getSupportRaidLevels) getSupportRaidLevels;
    /** The texts of codes, in the order of codeKeys. */
    std::array<decltype(&vontel::getRaidLevelStr), 5> codeTexts;

  private:
    struct Close
    {
        void operator()(void* library) const;
    };

    explicit VontelLibrary(std::unique_ptr<void, Close> library);

    std::unique_ptr<void, Close> library_;
};

} // namespace morvath::sim

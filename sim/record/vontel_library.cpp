// SPDX-License-Identifier: Apache-2.0
#include "sim/record/vontel_library.hpp"

#include <dlfcn.h>

#include <stdexcept>
#include <string>

namespace morvath::sim
{

constexpr const char* libraryName = "libvontel.so.0";

namespace
{

template <typename Function>
void find(void* library, const std::string& mangled, Function*& function)
{
    void* symbol = dlsym(library, ("_ZN6vontel" + mangled).c_str());
    if (symbol == nullptr)
    {
        throw std::runtime_error(dlerror());
    }
    function = reinterpret_cast<Function*>(symbol);
}

} // namespace

std::unique_ptr<VontelLibrary> VontelLibrary::load()
{
    // It stays: an exception of its own is caught when this is closed already.
    std::unique_ptr<void, Close> library(
        dlopen(libraryName, RTLD_NOW | RTLD_NODELETE));
    if (library)
    {
        return std::unique_ptr<VontelLibrary>(
            new VontelLibrary(std::move(library)));
    }
    const std::string error = dlerror();
    const bool isAbsent =
        error.starts_with(std::string(libraryName) + ": cannot open") &&
        error.ends_with("No such file or directory");
    if (!isAbsent)
    {
        throw std::runtime_error(error);
    }
    return nullptr;
}

VontelLibrary::VontelLibrary(std::unique_ptr<void, Close> library) :
    library_(std::move(library))
{
    void* from = library_.get();
    // Found by name, because a platform may be without the library. The names
    // follow from the types in raid/vontel.hpp.
    find(from, "17checkRaidMgrExistEv", checkRaidMgrExist);
    find(from, "13getRaidIdListEhRSt6vectorIjSaIjEE", getRaidIdList);
    find(from, "15getRaidInfoByIdEhjPNS_10RAIDInfo_TE", getRaidInfoById);
    find(from, "15getPhyDevIdListEhjRSt6vectorItSaItEE", getPhyDevIdList);
    find(from, "17getPhyDevInfoByIdEhjtPNS_12PhyDevInfo_TE", getPhyDevInfoById);
    find(from, "15getLogDevIdListEhjRSt6vectorItSaItEE", getLogDevIdList);
    find(from, "17getLogDevInfoByIdEhjtPNS_16LogicalDevInfo_TE",
         getLogDevInfoById);
    find(from,
         "11getRaidConfENSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE"
         "S5_S5_S5_RS5_S6_S6_S6_",
         getRaidConf);
    find(from, "20getSupportRaidLevelsB5cxx11Ehj", getSupportRaidLevels);
    find(from, "15getRaidLevelStrB5cxx11Eh", codeTexts[0]);
    find(from, "17getPhyDevStateStrB5cxx11Eh", codeTexts[1]);
    find(from, "17getDriveMediaTypeB5cxx11Eh", codeTexts[2]);
    find(from, "21getDriveInterfaceTypeB5cxx11Eh", codeTexts[3]);
    find(from, "13getDriveSpeedB5cxx11Eh", codeTexts[4]);
}

void VontelLibrary::Close::operator()(void* library) const
{
    dlclose(library);
}

} // namespace morvath::sim

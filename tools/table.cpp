#include "table.hpp"

#include <new>
#include <stdexcept>

namespace morvath::tools
{

void requireSuccess(int code)
{
    switch (code)
    {
        case 0:
            return;
        case -1:
            throw std::runtime_error("the platform does not answer, or has "
                                     "nothing of this kind");
        case -2:
            throw std::bad_alloc();
        default:
            throw std::runtime_error("the library reports code " +
                                     std::to_string(code));
    }
}

} // namespace morvath::tools

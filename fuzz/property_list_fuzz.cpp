// Any bytes as a property list: what is read can be written, and is the same when read again.
#include "fuzz_input.h"
#include "platform/defaults/property_list.h"

using namespace zelmora;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto list = platform::propertyListFromXML(fuzz::Input(data, size).restAsString(), "fuzz");
    if (!list)
        return 0;
    const auto xml = platform::xmlFromPropertyList(*list);
    fuzz::require(xml.ok());
    const auto again = platform::propertyListFromXML(*xml, "again");
    fuzz::require(again.ok() && *again == *list);
    return 0;
}

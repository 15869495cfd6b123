// The console program's entry.

#include "app/console_application.h"
#include "platform/files/process_setup.h"

int main(int argc, char** argv) {
    zelmora::platform::setUpProcess();
    zelmora::ConsoleApplication application(zelmora::platform::FileManager::defaultManager());
    const std::span arguments(argv, static_cast<size_t>(argc));
    return application.run(arguments.subspan(argc > 0 ? 1 : 0));
}

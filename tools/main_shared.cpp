#include "main_shared.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "sitting.h"
#include "terminal.h"

namespace bmr::tools {
namespace {

int Tell(const CLI::App& app, const std::string& why, int status) {
    std::cerr << app.get_name() << ": " << Printable(why) << std::endl;
    return status;
}

}  // namespace

int RunMain(CLI::App& app, int argc, char** argv, const std::function<void()>& run) {
    HardenProcess();
    try {
        app.parse(argc, argv);
        if (run) run();
        std::cout.flush();
        if (!std::cout) return Tell(app, "The output could not be written.", 1);
        return 0;
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return app.exit(error);  // help
        return Tell(app, error.what(), 1);
    } catch (const Failure& failure) {
        std::cout.flush();
        return Tell(app, failure.what(), failure.status());
    } catch (const std::exception& error) {
        return Tell(app, error.what(), 1);
    }
}

}  // namespace bmr::tools

#include "trial/exit_status.h"

#include <iostream>

#include "installer/show.h"
#include "sandbox/sandbox.h"

namespace trial {

namespace {

ExitStatus print(std::exception const& error, ExitStatus status) {
    std::cout.flush(); // a child that ends flushes nothing
    std::cerr << "wb-trial: " << installer::printable(error.what()) << '\n';
    return status;
}

} // namespace

ExitStatus status_of(bool has_succeeded) {
    if (!std::cout.flush()) throw std::runtime_error("the report cannot be written");
    return has_succeeded ? all_succeeded : something_failed;
}

ExitStatus status_or_error(std::function<ExitStatus()> const& work) {
    try {
        return work();
    } catch (StartError const& error) {
        return print(error, not_started);
    } catch (sandbox::DescriptorsRefused const& error) {
        return print(error, not_started);
    } catch (sandbox::Refused const& error) {
        std::string const advice = "; where the disk may change, use wb-trial check --no-sandbox";
        return print(StartError(error.what() + advice), not_started);
    } catch (std::exception const& error) {
        print(error, something_failed);
        std::cout << "failed" << std::endl;
        return something_failed;
    }
}

} // namespace trial

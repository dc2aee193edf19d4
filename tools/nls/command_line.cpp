#include "tools/nls/command_line.hpp"

#include <CLI/CLI.hpp>

namespace nls::tool {

Option& Option::shownAs(const char* type) {
    option_->type_name(type);
    return *this;
}

Option& Option::required() {
    option_->required();
    return *this;
}

Option& Option::showsDefault() {
    option_->capture_default_str();
    return *this;
}

Option& Option::oneOf(const std::vector<std::string>& words) {
    option_->check(CLI::IsMember(words));
    return *this;
}

Option& Option::bytesFromTo(uint64_t least, uint64_t most) {
    option_->transform(CLI::AsSizeValue(false))->check(CLI::Range(least, most));
    return *this;
}

Option& Option::oneForEachUse() {
    option_->take_all()->expected(1);
    return *this;
}

Option& Option::excludes(const char* other) {
    option_->excludes(other);
    return *this;
}

Option& Option::needs(const char* other) {
    option_->needs(other);
    return *this;
}

bool Option::isGiven() const {
    return option_->count() != 0;
}

Command Command::add(const char* name, const char* what) const {
    return {*app_->add_subcommand(name, what), *run_};
}

void Command::takesCommands() {
    app_->require_subcommand(1);
}

Option Command::option(const char* names, std::string& value, const char* what) {
    return Option(app_->add_option(names, value, what));
}

Option Command::option(const char* names, uint64_t& value, const char* what) {
    return Option(app_->add_option(names, value, what));
}

Option Command::option(const char* names, std::vector<std::string>& values, const char* what) {
    return Option(app_->add_option(names, values, what));
}

Option Command::flag(const char* names, bool& value, const char* what) {
    return Option(app_->add_flag(names, value, what));
}

Option Command::flag(const char* names, const std::function<void()>& then, const char* what) {
    return Option(app_->add_flag_callback(names, then, what));
}

void Command::files(std::vector<std::string>& names, const char* what) {
    files_ = &names;
    option("FILE", names, what).shownAs("");
}

void Command::output(std::string& file) {
    option("-o,--output", file, "write to FILE, which appears when all is done").shownAs("FILE");
}

void Command::footer(const std::string& text) {
    app_->footer(text);
}

void Command::runs(Run run) {
    app_->callback([files = files_, target = run_, run = std::move(run)] {
        if (files != nullptr && files->empty()) files->emplace_back("-");
        *target = run;
    });
}

}  // namespace nls::tool

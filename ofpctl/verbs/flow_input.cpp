#include "verbs/flow_input.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "flow/flow_reader.h"
#include "frame/failure.h"
#include "frame/interrupt.h"
#include "frame/message.h"
#include "frame/words.h"

namespace ofpctl {

namespace {

constexpr std::size_t most_errors = 20;

class InputFile {
public:
    explicit InputFile(const std::string &name)
        : descriptor_(name == "-" ? STDIN_FILENO : open(name.c_str(), O_RDONLY | O_CLOEXEC))
    {
        struct stat about {};
        if (descriptor_ < 0 || fstat(descriptor_, &about) != 0)
            throw usage_failure(fmt::format("{}: {}", name, std::strerror(errno)));
        if (S_ISDIR(about.st_mode)) {
            close_own();
            throw usage_failure(fmt::format("{}: is a directory; a file is wanted", name));
        }
    }
    ~InputFile() { close_own(); }
    InputFile(const InputFile &) = delete;
    InputFile &operator=(const InputFile &) = delete;

    int descriptor() const { return descriptor_; }

private:
    void close_own() const
    {
        if (descriptor_ > STDERR_FILENO)
            close(descriptor_);
    }

    int descriptor_;
};

class Reader {
public:
    Reader(Context &context, ParseMode mode) : context_(context), mode_(mode) {}

    void read_file(const std::string &name)
    {
        const std::string shown = name == "-" ? "standard input" : name;
        const InputFile file(name);
        input_.begin_source(shown);
        LoadOptions options{.mode = mode_};
        options.most_errors = most_errors - errors_.size();
        if (options.most_errors == 0)
            return;
        std::vector<SourceError> wrong =
            load_flows(file.descriptor(), shown, options, input_.rules);
        check_interrupt("interrupted; nothing was sent");
        std::move(wrong.begin(), wrong.end(), std::back_inserter(errors_));
    }

    void read_operand(const std::string &text, std::size_t number)
    {
        const std::string name = fmt::format("argument {}", number);
        input_.begin_source(name);
        const std::size_t start = text.find_first_not_of(" \t");
        const bool json = start != std::string::npos && text[start] == '{';
        std::optional<TextError> error =
            json ? input_.rules.add_json(text, mode_) : input_.rules.add_text(text, mode_);
        if (error && errors_.size() < most_errors)
            errors_.push_back({.file = name, .line = 1, .what = std::move(*error), .text = text});
    }

    FlowInput finish()
    {
        if (!errors_.empty())
            refuse();
        if (input_.rules.empty())
            throw usage_failure("there is no rule in the input");
        return std::move(input_);
    }

private:
    [[noreturn]] void refuse()
    {
        for (const SourceError &error : errors_)
            remark(render(error));
        if (context_.out.json())
            print_json(context_.out.document());
        throw usage_failure(fmt::format("{}{} in the input; nothing was sent",
                                        counted(errors_.size(), "error"),
                                        errors_.size() >= most_errors ? " or more" : ""));
    }

    void print_json(JsonWriter &json) const
    {
        json.begin_array("errors");
        for (const SourceError &error : errors_) {
            json.begin_object();
            json.text("source", error.file);
            json.number("line", static_cast<int64_t>(error.line));
            json.number("column", static_cast<int64_t>(error.what.column));
            json.text("message", error.what.message);
            json.text("hint", error.what.hint);
            json.end();
        }
        json.end();
    }

    Context &context_;
    ParseMode mode_;
    FlowInput input_;
    std::vector<SourceError> errors_;
};

} // namespace

void FlowInput::begin_source(std::string name)
{
    sources_.push_back({std::move(name), rules.size()});
}

const std::string &FlowInput::source(std::size_t index) const
{
    const auto after = std::upper_bound(
        sources_.begin(), sources_.end(), index,
        [](std::size_t wanted, const Source &source) { return wanted < source.first; });
    return std::prev(after)->name;
}

std::size_t FlowInput::line(std::size_t index) const { return rules.source_line(index); }

std::string FlowInput::where(std::size_t index) const
{
    const std::size_t number = line(index);
    return number == 0 ? source(index) : fmt::format("{}:{}", source(index), number);
}

FlowInput read_flow_operands(Context &context, ParseMode mode)
{
    Reader reader(context, mode);
    const Words &operands = context.arguments.operands();
    const Words &files = context.arguments.all("file");
    if (operands.empty() && files.empty())
        throw usage_failure("a rule is missing: as an argument, with --file FILE, or - for "
                            "standard input");
    for (std::size_t i = 0; i < operands.size(); i++) {
        if (operands[i] == "-")
            reader.read_file(operands[i]);
        else
            reader.read_operand(operands[i], i + 1);
    }
    for (const std::string &file : files)
        reader.read_file(file);
    return reader.finish();
}

FlowInput read_flow_files(Context &context)
{
    Reader reader(context, ParseMode::program);
    for (const std::string &file : context.arguments.operands())
        reader.read_file(file);
    return reader.finish();
}

} // namespace ofpctl

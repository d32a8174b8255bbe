// Prints the help and the manual page.

#include "reference.h"

#include "support/text.h"
#include "values.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <vector>

namespace quorva::inspect {

namespace {

using Options = std::vector<const CLI::Option*>;

constexpr std::size_t lineWidth = 100;
constexpr std::size_t longestTerm = 30;

std::string upperCase(std::string text)
{
    for (char& c : text)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return text;
}

Options argumentsOf(const CLI::App& app)
{
    return app.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

// The groups of options in the order of the declarations, without options that are hidden.
std::vector<std::string> groupsOf(const CLI::App& app)
{
    std::vector<std::string> groups = app.get_groups();
    std::erase(groups, "");
    return groups;
}

Options optionsOf(const CLI::App& app, const std::string& group)
{
    return app.get_options(
        [&](const CLI::Option* option) { return !option->get_positional() && option->get_group() == group; });
}

// The verbs with a group, by group.
std::vector<const CLI::App*> verbsOf(const CLI::App& program, const std::string& group)
{
    return program.get_subcommands([&](const CLI::App* verb) { return verb->get_group() == group; });
}

std::vector<std::string> verbGroupsOf(const CLI::App& program)
{
    std::vector<std::string> groups;
    for (const CLI::App* verb : program.get_subcommands([](const CLI::App*) { return true; }))
        if (std::ranges::find(groups, verb->get_group()) == groups.end()) groups.push_back(verb->get_group());
    return groups;
}

// "raw|hex", or "KIND" for --kind if the words are too many for a line.
std::string valueName(const CLI::Option& option)
{
    std::string name = option.get_type_name();
    if (name.size() <= 40 || wordsOf(option).empty()) return name;
    return upperCase(option.get_single_name());
}

// "-h, --help", "--from raw|hex"
std::string termOf(const CLI::Option& option)
{
    if (option.get_positional()) return option.get_name(true);
    std::string term;
    for (const std::string& name : option.get_snames()) term += (term.empty() ? "-" : ", -") + name;
    for (const std::string& name : option.get_lnames()) term += (term.empty() ? "--" : ", --") + name;
    return takesValue(option) ? term + ' ' + valueName(option) : term;
}

// The summary of a verb is a sentence without its full stop.
std::string descriptionOf(const CLI::App& app)
{
    return app.get_parent() ? app.get_description() + '.' : app.get_description();
}

std::string descriptionOf(const CLI::Option& option)
{
    std::string text = option.get_description();
    if (const auto words = wordsOf(option); !words.empty() && valueName(option) != option.get_type_name())
        text += ": " + alternatives(words);
    if (!option.get_default_str().empty() && option.get_default_str() != "-")
        text += " (default: " + option.get_default_str() + ')';
    std::vector<std::string> others;
    for (const CLI::Option* other : option.get_excludes()) others.push_back(other->get_name());
    std::ranges::sort(others);
    if (!others.empty()) text += " (not with " + alternatives(others) + ')';
    if (option.get_items_expected_max() > 1) text += " (can be given several times)";
    return text;
}

// The words of the text in lines with this indentation. `column` is where the first line begins.
std::string filled(std::string_view text, std::size_t indent, std::size_t column)
{
    std::string lines;
    for (const std::string& word : CLI::detail::split(std::string(text), ' ')) {
        if (column + 1 + word.size() > lineWidth) {
            lines += '\n' + std::string(indent, ' ');
            column = indent;
        } else if (!lines.empty() && lines.back() != ' ') {
            lines += ' ';
            ++column;
        }
        lines += word;
        column += support::columns(word);
    }
    return lines + '\n';
}

// The lines of a description or a footer. Indented ones stay as they are.
std::string filledLines(const std::string& text)
{
    std::string lines;
    for (const std::string_view line : support::linesOf(text))
        lines += line.starts_with("  ") ? std::string(line) + '\n' : filled(line, 0, 0);
    while (lines.ends_with("\n\n")) lines.pop_back();
    return lines;
}

// A term and its description in two columns.
std::string entry(const std::string& term, const std::string& description, std::size_t width)
{
    std::string text = "  " + term;
    const std::size_t indent = width + 4;
    text += term.size() > width ? '\n' + std::string(indent, ' ') : std::string(indent - text.size(), ' ');
    return text + filled(description, indent, indent);
}

std::string entriesText(const std::string& heading, const Options& options)
{
    std::size_t width = 0;
    for (const CLI::Option* option : options)
        if (const std::size_t size = termOf(*option).size(); size <= longestTerm) width = std::max(width, size);
    std::string text = '\n' + heading + ":\n";
    for (const CLI::Option* option : options) text += entry(termOf(*option), descriptionOf(*option), width);
    return options.empty() ? "" : text;
}

// The text in a line of roff, where `\`, `-`, and `.` or `'` at its start have other meanings.
std::string escaped(std::string_view text)
{
    std::string line = text.starts_with('.') || text.starts_with('\'') ? "\\&" : "";
    for (const char c : text) {
        if (c == '\\')
            line += "\\e";
        else if (c == '-')
            line += "\\-";
        else if (c == '\'')
            line += "\\(aq";
        else if (c == '`')
            line += "\\(ga";
        else if (c == '^')
            line += "\\(ha";
        else if (c == '~')
            line += "\\(ti";
        else
            line += c;
    }
    return line;
}

// A macro's argument in quotes.
std::string argument(std::string_view text)
{
    std::string quoted = "\"";
    for (const char c : escaped(text)) quoted += c == '"' ? "\\(dq" : std::string(1, c);
    return quoted + '"';
}

std::string manualEntries(const Options& options)
{
    std::string page;
    for (const CLI::Option* option : options) {
        page += ".TP\n.B " + argument(termOf(*option)) + '\n' + escaped(descriptionOf(*option)) + ".\n";
    }
    return page;
}

// A description or a footer. `heading` makes the macro of a heading.
std::string manualLines(const std::string& text, const std::function<std::string(std::string_view)>& heading)
{
    std::string page;
    bool isLiteral = false, endsParagraph = false;
    for (const std::string_view line : support::linesOf(text)) {
        const bool isIndented = line.starts_with("  ");
        if (isLiteral && !isIndented) page += ".fi\n";
        if (!isLiteral && isIndented) page += ".PP\n.nf\n";
        isLiteral = isIndented;
        if (isIndented)
            page += escaped(line.substr(2)) + '\n';
        else if (line.ends_with(':') && line.find('.') == line.npos)
            page += heading(line.substr(0, line.size() - 1));
        else if (!line.empty())
            page += (endsParagraph ? ".PP\n" : "") + escaped(line) + '\n';
        endsParagraph = line.empty();
    }
    return isLiteral ? page + ".fi\n" : page;
}

std::string manualVerb(const CLI::App& verb)
{
    std::string page =
        ".SS " + verb.get_name() + '\n' + escaped(descriptionOf(verb)) + "\n.PP\n.B " + argument(usageOf(verb)) + '\n';
    page += manualEntries(argumentsOf(verb));
    for (const std::string& group : groupsOf(verb)) {
        Options options = optionsOf(verb, group);
        std::erase_if(options, [](const CLI::Option* option) { return option->get_name() == "--help"; });
        if (group != interfaceGroup) page += manualEntries(options);
    }
    return page + manualLines(verb.get_footer(), [](std::string_view text) {
               return ".PP\n.I " + argument(std::string(text) + ':') + '\n';
           });
}

}  // namespace

std::string usageOf(const CLI::App& app)
{
    if (!app.get_parent()) return app.get_name() + " VERB [TYPE] [INPUT] [OPTION]...";
    std::string usage = app.get_parent()->get_name() + ' ' + app.get_name();
    for (const CLI::Option* argument : argumentsOf(app))
        usage += argument->get_required() ? ' ' + termOf(*argument) : " [" + termOf(*argument) + ']';
    return usage + " [OPTION]...";
}

std::string helpText(const CLI::App& app)
{
    std::string text = "Usage: " + usageOf(app) + "\n\n" + filledLines(descriptionOf(app));
    for (const std::string& group : verbGroupsOf(app)) {
        text += '\n' + group + ":\n";
        for (const CLI::App* verb : verbsOf(app, group)) text += entry(verb->get_name(), verb->get_description(), 8);
    }
    text += entriesText("Arguments", argumentsOf(app));
    for (const std::string& group : groupsOf(app)) text += entriesText(group, optionsOf(app, group));
    text += '\n';
    return text + filledLines(app.get_footer());
}

std::string manualPage(const CLI::App& program, const std::string& version)
{
    const auto upperHeading = [](std::string_view text) {
        return ".SH " + argument(upperCase(std::string(text))) + '\n';
    };
    std::string page = ".TH QUORVAXDR 1 \"\" " + argument(version) + "\n.SH NAME\nquorvaxdr \\- " +
                       "show and examine messages of the service API\n.SH SYNOPSIS\n.B " + argument(usageOf(program)) +
                       "\n.SH DESCRIPTION\n" + manualLines(descriptionOf(program), upperHeading);
    for (const std::string& group : verbGroupsOf(program)) {
        page += ".SH " + argument(upperCase(group)) + '\n';
        for (const CLI::App* verb : verbsOf(program, group)) page += manualVerb(*verb);
    }
    page += ".SH OPTIONS\n";
    for (const std::string& group : groupsOf(program)) page += manualEntries(optionsOf(program, group));
    page += ".SS " + argument(interfaceGroup) + "\nEvery verb has these options.\n";
    const CLI::App& anyVerb = *program.get_subcommands([](const CLI::App*) { return true; }).front();
    page += manualEntries(optionsOf(anyVerb, interfaceGroup));
    return page + manualLines(program.get_footer(), upperHeading);
}

}  // namespace quorva::inspect

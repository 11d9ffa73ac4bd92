/// The completion scripts, made from the table of options.
#include "Completion.h"

#include "Options.h"

#include "conversion/PixelFormats.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace preview_host {
namespace {

/// The words that a value of this type can be; none where it is free.
std::string wordsOf(std::string type)
{
    if (type == "FORMAT") {
        std::string words;
        for (const auto& info : KSX::PixelConversion::kPixelFormats)
            words.append(words.empty() ? "" : " ").append(info.name);
        return words;
    }
    if (type.find('|') == type.npos)
        return {};
    std::replace(type.begin(), type.end(), '|', ' ');
    return type;
}

bool takesValue(const CLI::Option& option)
{
    return option.get_items_expected_max() > 0;
}

std::string bashScript(const std::vector<const CLI::Option*>& options)
{
    std::string cases;
    std::string names;
    for (const CLI::Option* option : options) {
        if (option->get_positional())
            continue;
        const std::string name = option->get_name();
        names.append(names.empty() ? "" : " ").append(name);
        if (!takesValue(*option))
            continue;
        const std::string type = option->get_type_name();
        const std::string words = wordsOf(type);
        cases += "    " + name + ") ";
        if (type == "FILE")
            cases += "compopt -o filenames; mapfile -t COMPREPLY < <(compgen -f -- \"$word\")";
        else if (!words.empty())
            cases += "mapfile -t COMPREPLY < <(compgen -W '" + words + "' -- \"$word\")";
        cases += (type == "FILE" || !words.empty() ? "; " : "") + std::string("return ;;\n");
    }
    return "# bash completion of preview_host\n"
           "_preview_host()\n"
           "{\n"
           "    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}\n"
           "    # --option=value comes as three words.\n"
           "    if [[ $word == = ]]; then\n"
           "        word=\n"
           "    elif [[ $before == = ]]; then\n"
           "        before=${COMP_WORDS[COMP_CWORD-2]}\n"
           "    fi\n"
           "    case $before in\n" +
           cases +
           "    esac\n"
           "    if [[ $word == -* ]]; then\n"
           "        mapfile -t COMPREPLY < <(compgen -W '" +
           names +
           "' -- \"$word\")\n"
           "    else\n"
           "        compopt -o filenames\n"
           "        mapfile -t COMPREPLY < <(compgen -f -- \"$word\")\n"
           "    fi\n"
           "}\n"
           "complete -F _preview_host preview_host\n";
}

/// `text` for a description in single quotes and brackets.
std::string zshText(const std::string& text)
{
    std::string safe;
    for (const char c : text) {
        if (c == '\'')
            safe += "'\\''";
        else if (c == '[' || c == ']' || c == ':')
            safe.append({'\\', c});
        else
            safe += c == '\n' ? ' ' : c;
    }
    return safe;
}

std::string zshScript(const std::vector<const CLI::Option*>& options)
{
    std::string arguments;
    for (const CLI::Option* option : options) {
        const std::string type = option->get_type_name();
        const std::string words = wordsOf(type);
        const std::string values = type == "FILE"  ? "_files"
                                   : words.empty() ? ""
                                                   : "(" + words + ")";
        arguments += " \\\n        '";
        if (option->get_positional())
            arguments.append("::").append(option->get_name()).append(":").append(values);
        else
            arguments += option->get_name() + (takesValue(*option) ? "=" : "") + "[" +
                         zshText(option->get_description()) + "]" +
                         (takesValue(*option) ? ":value:" + values : "");
        arguments += "'";
    }
    return "#compdef preview_host\n"
           "_preview_host()\n"
           "{\n"
           "    _arguments" +
           arguments +
           "\n"
           "}\n"
           "# Found on fpath this file is the function itself, sourced it is to make it known.\n"
           "if [ \"$funcstack[1]\" = _preview_host ]; then\n"
           "    _preview_host \"$@\"\n"
           "else\n"
           "    compdef _preview_host preview_host\n"
           "fi\n";
}

} // namespace

std::string completionScript(const CLI::App& app, const std::string& shell)
{
    const auto options = app.get_options();
    return shell == "zsh" ? zshScript(options) : bashScript(options);
}

} // namespace preview_host

#include "cli/CompletionScripts.h"

namespace vellmark {
namespace {

// All three hand the words to "vellmark complete", each with a NUL behind it. Its answer has a line
// for each possible word, with a tab and its meaning; a line that begins with a tab asks for names
// of files or directories.

/// For bash 3.2, which macOS has, and later ones.
constexpr std::string_view bashScript = R"(# bash completion for vellmark

_vellmark() {
    local rest="${COMP_LINE#*"${COMP_WORDS[0]}"}" program="${COMP_WORDS[0]/#\~/$HOME}"
    local count=0 index word
    local -a words
    words=()
    COMPREPLY=()
    # bash parts the words at "=" and ":" too; what touches belongs together.
    for ((index = 1; index <= COMP_CWORD; index++)); do
        word="${COMP_WORDS[index]}"
        if ((count == 0)) || [[ $rest == [[:space:]]* ]]; then
            words[count]="$word"
            count=$((count + 1))
        else
            words[count - 1]="${words[count - 1]}$word"
        fi
        rest="${rest#*"$word"}"
    done
    local current="${words[count - 1]}" quote=""
    case "$current" in
    \"* | \'*)
        quote="${current:0:1}"
        current="${current:1}"
        ;;
    *) current="${current//\\/}" ;;
    esac
    for ((index = 0; index < count - 1; index++)); do
        word="${words[index]//\\/}"
        words[index]="${word//[\"\']/}"
    done
    words[count - 1]="$current"

    local line asked="" before=""
    # Of an unquoted word bash replaces only what stands behind the last "=" or ":".
    if [[ -z $quote && $current == *[=:]* ]]; then
        before="${current%"${current##*[=:]}"}"
    fi
    while IFS= read -r line; do
        word="${line%%$'\t'*}"
        if [[ -z $word ]]; then
            asked="${line#$'\t'}"
        elif [[ $word == "$current"* ]]; then
            word="${word#"$before"}"
            [[ -n $quote ]] || printf -v word %q "$word"
            COMPREPLY+=("$word")
        fi
    done < <(printf '%s\0' "${words[@]}" | "$program" complete 2>/dev/null)

    local action=""
    case "$asked" in
    files) action=file ;;
    directories) action=directory ;;
    esac
    if [[ -n $action ]]; then
        compopt -o filenames 2>/dev/null
        while IFS= read -r line; do
            COMPREPLY+=("$line")
        done < <(compgen -A "$action" -- "${current#"$before"}")
    fi
}

complete -F _vellmark vellmark
)";

constexpr std::string_view zshScript = R"(#compdef vellmark

_vellmark() {
    local line word asked
    local -a entries typed
    typed=("${(@Q)words[2,CURRENT]}")
    while IFS= read -r line; do
        word="${line%%$'\t'*}"
        if [[ -z $word ]]; then
            asked="${line#$'\t'}"
        else
            entries+=("${word//:/\\:}${${line#*$'\t'}:+:${line#*$'\t'}}")
        fi
    done < <(printf '%s\0' "${typed[@]}" | command ${(Q)~words[1]} complete 2>/dev/null)
    if (( $#entries )); then
        _describe -V -t arguments vellmark entries
    fi
    case $asked in
    files)
        compset -P '--*='
        _files
        ;;
    directories)
        compset -P '--*='
        _files -/
        ;;
    esac
}

if [[ $zsh_eval_context[-1] == loadautofunc ]]; then
    _vellmark "$@"
else
    compdef _vellmark vellmark
fi
)";

constexpr std::string_view fishScript = R"(# fish completion for vellmark

function __vellmark_complete
    set -l typed (commandline -opc)
    set -l program $typed[1]
    set -l current (commandline -ct)
    set -e typed[1]
    set -a typed "$current"
    for line in (printf '%s\0' $typed | command $program complete 2>/dev/null)
        switch $line
            case \tfiles
                __fish_complete_path (string replace -r '^--[^=]*=' '' -- "$current")
            case \tdirectories
                __fish_complete_directories (string replace -r '^--[^=]*=' '' -- "$current")
            case '*'
                printf '%s\n' $line
        end
    end
end

complete -c vellmark -f -k -a '(__vellmark_complete)'
)";

} // namespace

const std::vector<std::string>& completionShells() {
    static const std::vector<std::string> shells{"bash", "zsh", "fish"};
    return shells;
}

std::string_view completionScript(std::string_view shell) {
    if (shell == "bash") {
        return bashScript;
    }
    if (shell == "zsh") {
        return zshScript;
    }
    return shell == "fish" ? fishScript : std::string_view();
}

} // namespace vellmark

# shellcheck shell=bash
# Completion of wb-trial's command line in bash.

_wb_trial() {
    local cur prev words cword
    _init_completion -n = || return

    case $prev in
    --plugin)
        _filedir
        return
        ;;
    --set)
        mapfile -t COMPREPLY < <(compgen -S = -W "DEFAULT_SEARCH_PATH SUPPORTED_VERSION VORN_INSTALL_DIR
            VORN_INSTALL_SUBDIR WB_INTEGRATION_PATH WB_PREFS WB_PREFS_INST_DIR WORKBENCH_SCRIPT_NAME
            log_file" -- "$cur")
        compopt -o nospace
        return
        ;;
    esac

    local number choices positional=()
    for ((number = 1; number < cword; number++)); do
        case ${words[number]} in
        --set | --plugin) number=$((number + 1)) ;;
        -*) ;;
        *) positional+=("${words[number]}") ;;
        esac
    done

    if [[ $cur == -* ]]; then
        choices="$(_parse_help "$1") $(_parse_help "$1" "${positional[0]-} --help")"
    elif ((${#positional[@]} == 0)); then
        choices="check install uninstall run"
    elif ((${#positional[@]} == 1)); then
        _filedir toml
        return
    elif [[ ${positional[0]} == run ]]; then
        choices="detect_wb_in_default_path validate_wb_path find_wb_components perform_integration
            init_wb_prefs perform_deintegration"
    fi
    mapfile -t COMPREPLY < <(compgen -W "${choices-}" -- "$cur")
} && complete -F _wb_trial wb-trial

# Command line of `./tessary run`: checking it and turning the caller's paths into Windows paths. Sourced after
# common.sh. Every function ends the script with status 2 when the argument is unusable.
# shellcheck shell=bash

# windows_path FILE: the name of FILE for programs of the target, in WINDOWS_PATH. The folder must exist. Drive Z: is
# the root of the file system.
windows_path() {
    local folder
    folder=$(cd -- "$(dirname -- "$1")" 2>/dev/null && pwd -P) ||
        fail "$STATUS_USAGE" "the folder of $1 does not exist"
    folder=${folder%/}/$(basename -- "$1")
    case $folder in
    *[\\\<\>:\"\|?*]*) fail "$STATUS_USAGE" "a Windows path cannot hold this name: $folder" ;;
    esac
    WINDOWS_PATH="Z:${folder//\//\\}"
}

readable_file() {
    [[ -f $1 && -r $1 ]] || fail "$STATUS_USAGE" "there is no readable file $1"
    windows_path "$1"
}

# readable_folder FOLDER: a folder to search.
readable_folder() {
    [[ -d $1 && -r $1 && -x $1 ]] || fail "$STATUS_USAGE" "there is no readable folder $1"
    windows_path "$(cd -- "$1" && pwd -P)"
}

# spoken WORD...: "a", "a or b", "a, b or c".
spoken() {
    local list=$1
    while [ $# -gt 2 ]; do
        shift
        list+=", $1"
    done
    [ $# -lt 2 ] || list+=" or $2"
    printf '%s' "$list"
}

# output_file OPTION FILE EXTENSION...: a file that will be written.
output_file() {
    local option=$1 file=$2 extension
    shift 2
    [ ! -d "$file" ] || fail "$STATUS_USAGE" "$file is a folder; a file name is needed"
    for extension; do
        if [[ ${file,,} == *"$extension" ]]; then
            windows_path "$file"
            return
        fi
    done
    fail "$STATUS_USAGE" "$option $file: the name must end in $(spoken "$@")"
}

# show_on_screen: the option --screen. TESSARY_SCREEN tells scripts/wine.sh.
show_on_screen() {
    [ -n "${DISPLAY-}" ] || fail "$STATUS_USAGE" "--screen needs a display, and DISPLAY is not set" \
        "run it in a graphical session, or leave --screen out"
    export TESSARY_SCREEN=yes
    HOST_ARGUMENTS+=(--screen)
}

# parse_run_option NAME [FILE]: one option with a value, appended to HOST_ARGUMENTS.
parse_run_option() {
    case $1 in
    --open | --answers | --save | --picture | --shaded | --export)
        [ -n "${2-}" ] || fail "$STATUS_USAGE" "$1 needs a file name"
        ;;
    --support)
        [ -n "${2-}" ] || fail "$STATUS_USAGE" "$1 needs a folder"
        ;;
    --picture-size)
        [[ $# -ge 2 && $2 =~ ^[1-9][0-9]{1,4}$ && $2 -ge 16 && $2 -le 10000 ]] ||
            fail "$STATUS_USAGE" "$1 needs a number from 16 to 10000"
        HOST_ARGUMENTS+=("$1" "$2")
        return
        ;;
    --view-from)
        # The host knows what numbers are; the pictures that it is for stand behind it.
        [[ $# -ge 2 && $2 == *,*,* ]] || fail "$STATUS_USAGE" "$1 needs three numbers X,Y,Z"
        HOST_ARGUMENTS+=("$1" "$2")
        return
        ;;
    *) fail "$STATUS_USAGE" "unknown option $1" "./tessary help lists the options" ;;
    esac
    case $1 in
    --open | --answers) readable_file "$2" ;;
    --support) readable_folder "$2" ;;
    --save) output_file "$1" "$2" .dxf ;;
    --picture) output_file "$1" "$2" .png .svg ;;
    --shaded) output_file "$1" "$2" .png ;;
    --export) output_file "$1" "$2" .stl .obj .csv ;;
    esac
    HOST_ARGUMENTS+=("$1" "$WINDOWS_PATH")
}

# Behind the caller's own folders: the LISP programs of the product.
search_product_programs() {
    windows_path "$TESSARY_ROOT/lisp"
    HOST_ARGUMENTS+=(--support "$WINDOWS_PATH")
}

# parse_run_arguments ARGUMENT...: fills HOST_ARGUMENTS, what drafthost.exe is given after the module: the options, then
# the programs. Options may stand among the programs; after -- there are only programs.
parse_run_arguments() {
    local programs=() options=yes
    HOST_ARGUMENTS=()
    while [ $# -gt 0 ]; do
        if [[ -n $options && $1 = -- ]]; then
            options=
            shift
        elif [[ -n $options && $1 = --screen ]]; then
            show_on_screen
            shift
        elif [[ -n $options && $1 = -* ]]; then
            parse_run_option "${@:1:2}"
            shift 2
        else
            readable_file "$1"
            programs+=("$WINDOWS_PATH")
            shift
        fi
    done
    if [ "${#programs[@]}" = 0 ] && [[ " ${HOST_ARGUMENTS[*]} " != *\ --@(save|picture|shaded|export)\ * ]]; then
        fail "$STATUS_USAGE" "no program to run" "./tessary run [options] PROGRAM.lsp ..."
    fi
    search_product_programs
    HOST_ARGUMENTS+=("${programs[@]}")
}

# parse_repl_arguments ARGUMENT...: the same for `./tessary repl`, which opens a drawing, searches folders
# and shows dialogs.
parse_repl_arguments() {
    HOST_ARGUMENTS=()
    while [ $# -gt 0 ]; do
        if [ "$1" = --screen ]; then
            show_on_screen
            shift
            continue
        fi
        [[ $1 = --@(open|support) && $# -ge 2 ]] ||
            fail "$STATUS_USAGE" "unusable argument $1" "./tessary repl [--screen] [--open FILE] [--support FOLDER]"
        parse_run_option "$1" "$2"
        shift 2
    done
    search_product_programs
}

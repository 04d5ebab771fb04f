# SPDX-License-Identifier: MIT
# shellcheck shell=bash disable=SC2034
#
# What the scripts share. To be sourced without arguments, as it takes --color out of the script's;
# needs bash and nothing else. Everything that a script has to say of its own goes to standard error.

readonly buildPackages=(g++ cmake ninja-build libcli11-dev nlohmann-json3-dev)
readonly testPackages=("${buildPackages[@]}" libgtest-dev libgmock-dev libplist-dev
    libssl-dev)
readonly benchPackages=("${buildPackages[@]}" libbenchmark-dev libpugixml-dev libplist-dev
    libsystemd-dev dbus-daemon valgrind)
readonly iosPackages=(g++ libssl-dev clang-14 lld-14 llvm-14)
readonly repositoryPackages=("${iosPackages[@]}" librsvg2-bin xz-utils)
readonly deviceTestPackages=("${repositoryPackages[@]}" gobjc++ libgnustep-base-dev googletest
    g++-aarch64-linux-gnu g++-arm-linux-gnueabi qemu-user)

say() { printf '%s\n' "$*" >&2; }

fail() {
    say "$(basename "$0"): $*"
    exit 1
}

# When what the script prints, and what the programs print that it runs, has colours: auto, always or
# never. Of these programs some know --color, which they are handed; some know the environment.
color=auto

# Takes --color WHEN and --color=WHEN out of a script's arguments, up to "--".
takeColor() {  # name of the array of arguments
    local -n words=$1
    local -a rest=()
    while ((${#words[@]})) && [[ ${words[0]} != -- ]]; do
        case ${words[0]} in
            --color=*) color=${words[0]#*=} ;;
            --color)
                color=${words[1]-}
                words=("${words[@]:1}")
                ;;
            *) rest+=("${words[0]}") ;;
        esac
        words=("${words[@]:1}")
    done
    words=("${rest[@]}" "${words[@]}")
    case $color in
        auto) [[ -z ${NO_COLOR-} ]] || export CLICOLOR=0 ;;
        always) export CLICOLOR_FORCE=1 ;;
        never) export NO_COLOR=1 CLICOLOR=0 ;;
        *) fail "neither auto nor always nor never: \"$color\"" ;;
    esac
}

# Whether standard error is a terminal that understands more than lines.
isScreen() { [[ -t 2 && ${TERM:-dumb} != dumb ]]; }

hasColors() {
    [[ $color == always ]] || { [[ $color == auto && -z ${NO_COLOR-} ]] && isScreen; }
}

# Says it in bold where there are colours, after an empty line.
heading() {
    if hasColors; then
        say $'\n\e[1m'"$*"$'\e[m'
    else
        say $'\n'"$*"
    fi
}

# What every script's help ends with.
commonHelp() {
    echo
    echo "--color auto|always|never: when there are colours; by default on a terminal."
}

# Answers --help with what stands at the head of the script that calls this, in the project's folder,
# and refuses options, and more arguments than it takes.
takes() {  # how many at most, argument…
    local word
    if [[ ${2-} == -h || ${2-} == --help ]]; then
        sed -n '4,/^[^#]/s/^# \?//p' "script/$(basename "$0")" | fmt -w 80 | tr -s " "
        commonHelp
        exit
    fi
    for word in "${@:2}"; do
        [[ $word != -* ]] || fail "there is no \"$word\"; see --help"
    done
    (($# - 1 <= $1)) || fail "cannot take ${*:$1+2}; see --help"
}

# The version of the project, in whose folder this is called.
version() { sed -n 's/^project(Quillet VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt; }

# The seconds since 1970 that stand for the time of the build: the commit's, unless they are given.
sourceDate() { echo "${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct 2>/dev/null || echo 0)}"; }

# Runs a command, whose output is shown only when it fails, on standard error.
quietly() {  # command…
    local output status=0
    output=$("$@" 2>&1) || status=$?
    ((status == 0)) || say "$output"
    return "$status"
}

# Runs one step of a script. Says which, and adds a line with how long it took, in seconds of time
# and of processors, to the file that $STEP_TIMES names, if it names one.
step() {  # what it is, command…
    say "== $1"
    local -r lines=$(mktemp) TIMEFORMAT='%R %U %S'
    { time "${@:2}" 2>&3; } 3>&2 2>"$lines"
    awk -v step="$1" '{ printf "%.0f s, %.0f s of processor time: %s\n", $1, $2 + $3, step }' \
        "$lines" >>"${STEP_TIMES:-/dev/null}"
    rm "$lines"
}

# The instructions that plist-bench takes for each byte of XML that it writes, what starts and ends the
# program taken out, with two decimals. The library's copying and clearing in bulk is left to
# instructions that every processor has, so that the count is the same on all of them.
instructionsPerByte() {  # plist-bench, engine, file, how often
    local more less
    more=$(countInstructions "$1" "$2" "$3" $((2 * $4)))
    less=$(countInstructions "$1" "$2" "$3" "$4")
    awk -v n=$(((more - less) / $4)) -v bytes="$(stat -c %s "$3.out")" \
        'BEGIN { printf "%.2f\n", n / bytes }'
}

countInstructions() {  # plist-bench, engine, file, how often
    GLIBC_TUNABLES=glibc.cpu.hwcaps=-AVX2,-ERMS,-FSRM valgrind --tool=callgrind \
        --callgrind-out-file=/dev/null "$1" set "$3" "$3.out" "$4" "$2" 2>&1 >/dev/null |
        sed -n 's/.*Collected *: *\([0-9]*\).*/\1/p'
}

asRoot() {  # command…
    if ((EUID == 0)); then "$@"; else sudo "$@"; fi
}

# The Debian packages among the given that are not installed.
missingPackages() {  # package…
    local package
    for package in "$@"; do
        [[ $(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) == installed ]] ||
            echo "$package"
    done
}

# What a package of Debian is for, where there is no apt-get: the program that must be there.
programOf() {  # package
    case $1 in
        ninja-build) echo ninja ;;
        xz-utils) echo xz ;;
        librsvg2-bin) echo rsvg-convert ;;
        clang) echo clang++ ;;
        llvm) echo llvm-symbolizer ;;
        lld-14) echo ld64.lld-14 ;;
        llvm-14) echo llvm-lipo-14 ;;
        gobjc++) echo gcc ;;
        g++-aarch64-linux-gnu) echo aarch64-linux-gnu-g++ ;;
        g++-arm-linux-gnueabi) echo arm-linux-gnueabi-g++ ;;
        qemu-user) echo qemu-aarch64 ;;
        googletest) ;;
        lib* | nlohmann-json3-dev) ;;  # no program: CMake and the compiler tell what they miss
        *) echo "$1" ;;
    esac
}

requirePrograms() {  # package…
    local package program missing=()
    for package in "$@"; do
        program=$(programOf "$package")
        [[ -z $program ]] || command -v "$program" >/dev/null || missing+=("$program")
    done
    ((${#missing[@]} == 0)) || fail "please install ${missing[*]}. Needed are g++ 12 or later," \
        "CMake 3.25 or later, Ninja, CLI11, nlohmann's JSON library and, for the tests, GoogleTest" \
        "with GoogleMock, libplist, OpenSSL, GNUstep's Foundation with gcc's Objective-C++, g++ for" \
        "aarch64 with an emulator, and clang 14 with lld and llvm, which also build for devices;" \
        "for all checks clang's tools and sanitizers, ShellCheck and gcovr."
}

# Sees to it that the programs and libraries of the given Debian packages are there: installs what
# is missing on Debian and its kin, names it elsewhere.
require() {  # package…
    if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
        requirePrograms "$@"
        return
    fi
    local missing
    mapfile -t missing < <(missingPackages "$@")
    ((${#missing[@]})) || return 0
    ((EUID == 0)) || command -v sudo >/dev/null ||
        fail "please install as root: apt-get install ${missing[*]}"
    say "Installing ${missing[*]}"
    local -r wait=(-o DPkg::Lock::Timeout=300)
    quietly asRoot apt-get "${wait[@]}" update -qq || fail "the package lists cannot be updated"
    quietly asRoot env DEBIAN_FRONTEND=noninteractive apt-get "${wait[@]}" install -qq -y \
        --no-install-recommends "${missing[@]}" || fail "the packages cannot be installed"
}

# Reads what a build prints: says that it builds when it does, how far it is where that is a terminal,
# and passes on all but progress.
tellBuild() {  # folder
    local line told=
    while IFS= read -r line; do
        if [[ $line =~ ^\[([0-9]+)/([0-9]+)\]\ (Building|Linking) ]]; then
            if isScreen; then
                printf '\rBuilding %s: %d of %d\e[K' "$1" "${BASH_REMATCH[@]:1:2}" >&2
            elif [[ -z $told ]]; then
                say "Building $1"
            fi
            told=yes
        elif [[ ! $line =~ ^(\[[0-9/]+\]|--|ninja: no work)\  ]]; then
            [[ -z $told ]] || ! isScreen || say
            say "$line"
        fi
    done
    [[ -z $told ]] || ! isScreen || say
}

# Configures and builds one of the presets, in build/<preset>.
buildPreset() {  # preset, [options of cmake --build…]
    local -r folder=build/$1
    if [[ ! $folder/build.ninja -nt CMakePresets.json ]] ||
        ! grep -qFx "CMAKE_HOME_DIRECTORY:INTERNAL=$PWD" "$folder/CMakeCache.txt"; then
        quietly cmake --preset "$1" --fresh || fail "$folder cannot be configured"
    fi
    cmake --build --preset "$1" "${@:2}" 2>&1 | tellBuild "$folder" ||
        fail "$folder cannot be built"
}

# Runs the tests of a preset that is built. Prints what the runner does, and how many tests there are
# in each program that runs them all in one process.
runTests() {  # preset
    local progress=()
    [[ ! -t 1 ]] || progress=(--progress)
    ctest --preset "$1" --parallel "$(nproc)" "${progress[@]}"
    grep -aE '^\[  PASSED  \] [0-9]+ tests' "build/$1/Testing/Temporary/LastTest.log" || true
}

arguments=("$@")
takeColor arguments
set -- "${arguments[@]}"

# Sourced by ./run and ./test: installs what is missing and configures a build tree.

packages="g++ cmake ninja-build ccache qt6-base-dev qt6-svg-dev libpugixml-dev libeigen3-dev \
libgeographiclib-dev libgtest-dev libgmock-dev libbenchmark-dev libgl1-mesa-dev fonts-dejavu-core \
libgdal-dev gdal-bin poppler-utils python3"

install_packages() {
  local missing=""
  for package in $packages; do
    case "$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null)" in
      "install ok installed") ;;
      *) missing="$missing $package" ;;
    esac
  done
  [ -z "$missing" ] && return 0
  echo "Installing:$missing"
  local as_root=""
  [ "$(id -u)" -eq 0 ] || as_root="sudo"
  $as_root env DEBIAN_FRONTEND=noninteractive apt-get update -qq
  $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing
}

# configure PRESET: sets up build/PRESET when it is new; ninja reconfigures by itself afterwards.
configure() {
  mkdir -p build
  [ -f "build/$1/build.ninja" ] || cmake --preset "$1" >"build/$1.log" 2>&1 || {
    cat "build/$1.log"
    return 1
  }
}

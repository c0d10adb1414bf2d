"""The libraries that the build with MSVC needs, for those who use Conan instead of vcpkg. Conan 2.

    conan install . --output-folder=build/conan --build=missing
    cmake -S . -B build/msvc -DCMAKE_TOOLCHAIN_FILE=build/conan/conan_toolchain.cmake
"""
from conan import ConanFile


class OviDependencies(ConanFile):
    settings = "os", "arch", "compiler", "build_type"
    generators = "CMakeDeps", "CMakeToolchain"
    # All of them go into the library, so that it needs no file beside it.
    default_options = {
        "*:shared": False,
        "boost/*:without_test": True,
    }

    def requirements(self):
        # The library
        self.requires("plog/[>=1.1.9 <2]")
        self.requires("boost/[>=1.74 <2]")  # Filesystem, System and the string algorithms
        self.requires("miniz/[>=2.2 <4]")
        self.requires("pugixml/[>=1.13 <2]")
        # The tool and the virtual camera
        self.requires("cli11/[>=2.1 <3]")
        self.requires("nlohmann_json/[>=3.11 <4]")
        self.requires("libpng/[>=1.6 <2]")

    def build_requirements(self):
        self.test_requires("gtest/[>=1.12 <2]")  # with GoogleMock
        self.test_requires("benchmark/[>=1.7 <2]")

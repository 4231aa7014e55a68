// swift-tools-version:5.9
// The TavuroCommon library for Swift hosts. The C++ core is compiled from
// its own sources (common/ and platform/, reached through the links in
// Sources/CTavuroCommon) with the settings of CMakeLists.txt; the Swift
// module TavuroCommon sits on its C interface.
import PackageDescription

let package = Package(
    name: "TavuroCommon",
    platforms: [.iOS(.v13), .macOS(.v10_15)],
    products: [
        .library(name: "TavuroCommon", targets: ["TavuroCommon"]),
    ],
    targets: [
        .target(
            name: "CTavuroCommon",
            path: "Sources/CTavuroCommon",
            sources: ["common", "platform"],
            publicHeadersPath: "include",
            cxxSettings: [
                .headerSearchPath("."),
                .headerSearchPath("common/include"),
                .define("TAVURO_BUILDING_LIBRARY"),
                // The build-time default of CMakeLists.txt; scripts/test checks that they agree.
                .define("TAVURO_KELMO_DEFAULT_ENDPOINT", to: "\"https://kelmo.tavuro.com/api/\""),
            ],
            linkerSettings: [.linkedLibrary("pthread", .when(platforms: [.linux]))]
        ),
        .target(name: "TavuroCommon", dependencies: ["CTavuroCommon"]),
        .executableTarget(name: "TavuroExample", dependencies: ["TavuroCommon"]),
        .target(name: "CTavuroBenchmarks", dependencies: ["CTavuroCommon"]),
        .executableTarget(name: "TavuroBenchmarks", dependencies: ["TavuroCommon", "CTavuroBenchmarks"]),
        .testTarget(name: "TavuroCommonTests", dependencies: ["TavuroCommon", "CTavuroCommon"]),
    ],
    cxxLanguageStandard: .cxx17
)

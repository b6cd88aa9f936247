"""Which tests are to catch a mistake in which source."""

import dataclasses
import os
import pathlib

CONVERSION = "FileConverters/CoordinationWorkspaceSection/"
CONVERTER = "CoordWorkSpaceSectionConverter0_3"
DIAGNOSTICS = (
    "CIDTest", "DCIDTest", "DeviceGateTest", "FileOutDevConfigTest", "LocalClockTest", "LogFilesCleanupTest",
    "LogFilesCleanupThreadTest", "LogLineTest", "LogServiceConfigTest", "LogServiceImplTest",
    "LogServiceSafetyTest", "LogServiceUsersTest", "LogSessionTest", "LoggerImplTest", "LoggerMessageTest",
    "LoggerWriterThreadTest", "LogServiceProcessTest", "LogServiceStressTest",
)  # fmt: skip

ARCHIVE_PARTS = tuple(
    f"Archive.{part}"
    for part in ("Documents", "ExistingTargets", "Options", "Statuses", "WrongUsage", "Mishaps",
                 "TakingUp", "Streams", "HostileDocuments")
)

# What the tests that are scripts run; any other test is a program of its own name.
PROGRAMS = {
    "ConverterProgramTest": (CONVERTER,),
    "SecondOpinion": (CONVERTER,),
    "Promises": (CONVERTER, "bare"),
    "InspectProgram": ("coordworkspace-inspect", CONVERTER),
    "InspectMistakes": ("coordworkspace-inspect", CONVERTER),
    "InspectAgreement": ("coordworkspace-inspect", CONVERTER),
    **dict.fromkeys(ARCHIVE_PARTS, ("coordworkspace-convert-archive",)),
    **dict.fromkeys(
        ("ArchivePage", "ArchiveMachines"), ("coordworkspace-convert-archive", "coordworkspace-inspect")
    ),
}


@dataclasses.dataclass(frozen=True)
class Suite:
    """The tests of one part of the project, the fast ones first."""

    name: str
    sources: tuple
    tests: tuple

    def __str__(self):
        return self.name


SUITES = (
    Suite("directories", ("ZelMain/DirectoryMemory.cpp",), ("DirectoryMemoryTest",)),
    Suite(
        "frequencies",
        ("ZelMain/Frequency*.cpp",),
        ("FrequencyTest", "FrequencyParsingTest", "FrequencyFormattingTest", "FrequencyRoundTripTest"),
    ),
    Suite("diagnostics", ("ZelMain/Diagnostics/*.cpp",), DIAGNOSTICS),
    Suite(
        "keys and profiles",
        ("ZelMain/FrequencyCompatibility/*.cpp", "ZelMain/FrequencyCompatibility/shared/*.cpp"),
        ("QDomDocHelperTest", "QtPkCompatProfileTest", "QtPkTuningCapabilityTest", "CompatKeyTest",
         "PkCompatProfileTest", "TuningCapabilityTest", "XmlUtilTest"),
    ),
    Suite("versions", ("ZelMain/ImportExport/*.cpp",), ("XmlVersionChecksTest", "XmlVersionsTest")),
    Suite(
        "converter",
        tuple(
            CONVERSION + name
            for name in ("main.cpp", "ProcessSetup.cpp", "StandardInput.cpp", "Utf8Output.cpp",
                         "ConversionSteps.cpp", CONVERTER + ".cpp")
        ),
        ("ConversionStepsTest", CONVERTER + "Test", "ProcessSetupTest", "Utf8OutputTest",
         "ConverterProgramTest", "SecondOpinion", "Promises"),
    ),
    Suite(
        "inspector",
        (CONVERSION + "inspect/*.cpp",),
        ("InspectionTest", "FindingListTest", "DocumentTextTest", "DocumentPlacesTest",
         "DocumentTreeTest", "TextLayoutTest", "InspectCommandLineTest", "JsonLineTest",
         "InspectProgram", "InspectMistakes", "InspectAgreement"),
    ),
    Suite(
        "archive",
        (CONVERSION + "archive/*.cpp", CONVERSION + "archive/*/*.cpp"),
        ("ArchiveCommandLineTest", "ArchiveConversionTest", "ArchiveHistoryTest",
         "ArchiveLockTest", "ArchiveMessagesTest", "ArchivePageRowTest", "ArchivePageTest",
         "ArchiveParcelsTest", "ArchivePlacesTest", "ArchivePlanTest", "ArchiveProgressTest",
         "ArchiveReportTest", "ArchiveScheduleTest", "ArchiveSettingsTest", "ArchiveSummaryTest",
         "ArchiveSurveyTest", "ArchiveTreeTest", "AtomicFileTest", "BoundedServerTest",
         "ChangedSystemTest", "ConverterProcessTest", "DocumentBatchTest", "DocumentJobTest",
         "DocumentRecordTest", "FileIdentityTest", "HtmlTextTest", "LoginFileTest",
         "MachineRecordTest", "MachinesRoundTest", "ParallelProcessTest", "PathsTest",
         "PipeTest", "ProcessLimitsTest", "RunRecordsTest", "StableStorageTest",
         "StopSignalsTest", "TimedReadTest")
        + ARCHIVE_PARTS
        + ("ArchivePage", "ArchiveMachines"),
    ),
)  # fmt: skip


def suite_of(path):
    """The first suite that names the source; its own test comes first in it."""
    for suite in SUITES:
        if any(pathlib.PurePath(path).match(pattern) for pattern in suite.sources):
            stem = os.path.splitext(os.path.basename(path))[0]
            tests = sorted(suite.tests, key=lambda test: not test.startswith(stem))
            return dataclasses.replace(suite, tests=tuple(tests))
    return None


def targets_of(test):
    return PROGRAMS.get(test, (test,))

#pragma once

#include "store/catalogue.h"
#include "store/connection.h"
#include "store/modMain.h"
#include "support/fakes.h"
#include "support/recording_presentation_program.h"
#include "support/test_library.h"

namespace varnholt::test {

/// Reads the whole current assessment, and fails the test when that fails.
inline void LoadCurrentAssessment(ProgramState& state, Connection& connection)
{
    EXPECT_EQ(LoadStructure(state, connection), LoadFailures());
    LoadQuestions(state, connection);
}

/// A library, the shared state and every service faked: what a window is opened with.
struct TestWorld
{
    TestWorld()
    {
        services.messageBoxes = &messages;
        services.fileDialogs = &files;
        services.clipboard = &clipboard;
        services.clock = &clock;
        services.random = &random;
        services.presentationPrograms = &presentations;
        services.programFolder = library.folder();
    }

    TestLibrary library;
    ScriptedMessageBoxes messages;
    ScriptedFileDialogs files;
    FakeClipboard clipboard;
    FakeClock clock;
    FakeRandom random;
    RecordingPresentations presentations;
    Services services;
    ProgramState state;
    Connection connection;
};

} // namespace varnholt::test

-- The program's own tables in a library, beside the five that it is made with. They come with the
-- first change that needs them; an older program opens, reads and writes the library as before.
-- Times are seconds of UTC. No triggers, foreign keys or virtual tables.

-- One row.
CREATE TABLE PlusInfo (
    Version   INTEGER NOT NULL,
    LibraryID TEXT    NOT NULL
);
INSERT INTO PlusInfo (Version, LibraryID) VALUES (1, lower(hex(randomblob(16))));

-- The journal: one row for each row that a step changed. Step is the ChangeID of the step's first
-- row, negative while the step is undone, and 0 when it was undone for good. Kind: 1 assessment,
-- 2 topic, 3 subtopic, 4 question, 5 class, 6 test, 7 use.
-- Before and After are the row's fields as a JSON array, Available first; Before is NULL for a
-- row that the step added. Rows are never deleted here, so keys need no memory of their own.
CREATE TABLE PlusChanges (
    ChangeID INTEGER PRIMARY KEY,
    At       INTEGER NOT NULL,
    Step     INTEGER NOT NULL,
    Kind     INTEGER NOT NULL,
    ItemKey  INTEGER NOT NULL,
    Before   TEXT,
    After    TEXT    NOT NULL
);

CREATE TABLE PlusClasses (
    ClassID   INTEGER PRIMARY KEY AUTOINCREMENT,
    ClassName TEXT    NOT NULL,
    Available INTEGER NOT NULL DEFAULT 1
);

-- Kind: 1 slides, 2 shown, 3 paper, 4 kept for later; 0 never came to its end. Options is a JSON object.
CREATE TABLE PlusTests (
    TestID        INTEGER PRIMARY KEY AUTOINCREMENT,
    TestName      TEXT    NOT NULL,
    AssessmentNum INTEGER NOT NULL,
    ClassID       INTEGER NOT NULL DEFAULT 0,
    MadeAt        INTEGER NOT NULL,
    Kind          INTEGER NOT NULL,
    Seed          INTEGER NOT NULL,
    Options       TEXT    NOT NULL,
    Available     INTEGER NOT NULL DEFAULT 1
);

-- A test's questions as they were when it was made. Position is that in its draw pool.
CREATE TABLE PlusTestItems (
    TestID     INTEGER NOT NULL,
    Position   INTEGER NOT NULL,
    SOLIndex   INTEGER NOT NULL,
    Answer     TEXT    NOT NULL,
    TopicText  TEXT    NOT NULL,
    PictureSha BLOB,
    PRIMARY KEY (TestID, Position)
) WITHOUT ROWID;

-- Outcome: NULL unknown, 1 few, 2 half, 3 most of the class had it right.
CREATE TABLE PlusUses (
    UseID    INTEGER PRIMARY KEY AUTOINCREMENT,
    SOLIndex INTEGER NOT NULL,
    ClassID  INTEGER NOT NULL,
    TestID   INTEGER NOT NULL,
    UsedAt   INTEGER NOT NULL,
    Outcome  INTEGER
);
CREATE INDEX PlusUsesByClass ON PlusUses (ClassID, SOLIndex, UsedAt);

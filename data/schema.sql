-- The tables of a library. The program itself creates none: a library file is made from this
-- text, with the one row of History in place.

-- "Vrnh" as a big-endian number: marks the file as one of ours, for `file` and the like.
PRAGMA application_id = 0x56726e68;
-- Counts changes of these tables.
PRAGMA user_version = 1;

-- Keys are never used twice, even after the row with the highest key has gone: a key is also
-- the name of a picture file, and pictures outlive their questions.
-- Every field has a default and no check, so that whatever the program inserts is taken.
-- Available is 1 or 0; a row is deleted by setting it to 0.

CREATE TABLE Assessments (
    AssessmentNum  INTEGER PRIMARY KEY AUTOINCREMENT,
    AssessmentName TEXT    NOT NULL DEFAULT '',
    Available      INTEGER NOT NULL DEFAULT 1
);

CREATE TABLE Topics (
    TopicID       INTEGER PRIMARY KEY AUTOINCREMENT,
    Topic         TEXT    NOT NULL DEFAULT '',
    AssessmentNum INTEGER NOT NULL DEFAULT 0,
    Available     INTEGER NOT NULL DEFAULT 1
);

CREATE TABLE SubTopics (
    SubtopicNum   INTEGER PRIMARY KEY AUTOINCREMENT,
    TopicID       INTEGER NOT NULL DEFAULT 0,
    SubTopic      TEXT    NOT NULL DEFAULT '',
    AssessmentNum INTEGER NOT NULL DEFAULT 0,
    Available     INTEGER NOT NULL DEFAULT 1
);

CREATE TABLE Questions (
    SOLIndex      INTEGER PRIMARY KEY AUTOINCREMENT,
    TopicID       INTEGER NOT NULL DEFAULT 0,
    SubTopicNum   INTEGER NOT NULL DEFAULT 0,
    Answer        TEXT    NOT NULL DEFAULT '',
    AssessmentNum INTEGER NOT NULL DEFAULT 0,
    Available     INTEGER NOT NULL DEFAULT 1
);

-- Exactly one row.
CREATE TABLE History (
    LastID INTEGER NOT NULL DEFAULT 0
);
INSERT INTO History (LastID) VALUES (0);

-- One assessment's available rows come out of these in the order of their keys, because the
-- key follows both fields in every index entry.
CREATE INDEX TopicsByAssessment ON Topics (AssessmentNum, Available);
CREATE INDEX SubTopicsByAssessment ON SubTopics (AssessmentNum, Available);
CREATE INDEX QuestionsByAssessment ON Questions (AssessmentNum, Available);

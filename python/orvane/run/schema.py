"""The tables of a data set. docs/howto/run-a-sweep.md tells readers of the file about them."""

APPLICATION = 0x4F525652
"""PRAGMA application_id of a data set: "ORVR" """
VERSION = 1
"""PRAGMA user_version: of the tables below. Another one is refused."""

TABLES = """
CREATE TABLE recipe (             -- what was asked for; one more row each time that the data set was extended
    id      INTEGER PRIMARY KEY,
    hash    TEXT NOT NULL UNIQUE, -- SHA-256 of the same, names sorted
    json    TEXT NOT NULL,        -- name, boards, PHY, map, conditions, repeats, the steps' source
    since   TEXT NOT NULL         -- times are ISO 8601 in UTC
);
CREATE TABLE map (                -- the register maps that recipes name
    hash    TEXT PRIMARY KEY,     -- SHA-256 of the json
    json    TEXT NOT NULL         -- the whole map, as orvane.Map.parse() and the command line read it
) WITHOUT ROWID;
CREATE TABLE session (            -- a program that worked on it
    id          INTEGER PRIMARY KEY,
    recipe      INTEGER NOT NULL REFERENCES recipe,
    begun       TEXT NOT NULL,
    ended       TEXT,             -- NULL: it was killed, or is at work now
    how         TEXT,             -- 'complete', 'incomplete', 'interrupted' or the error that ended it
    environment TEXT NOT NULL     -- JSON: versions, host, user, the program's text
);
CREATE TABLE board (
    id         INTEGER PRIMARY KEY,
    port       TEXT NOT NULL UNIQUE, -- 'OV0001:0'
    serial     TEXT NOT NULL,
    phy        INTEGER NOT NULL,
    identifier INTEGER NOT NULL,  -- of the PHY: registers 1.2 and 1.3, as 32 bits
    details    TEXT NOT NULL,     -- JSON: what the identity step of the run told, such as firmware
    key        INTEGER NOT NULL   -- of its exclusive or shared sessions; 0: none
);
CREATE TABLE point (              -- a measurement: committed as a whole, before the next one of its board begins
    id         INTEGER PRIMARY KEY,
    board      INTEGER NOT NULL REFERENCES board,
    conditions TEXT NOT NULL,     -- JSON: {"drive": 0, "temperature": 25}, names sorted
    repeat     INTEGER NOT NULL,  -- 0, 1, ...
    state      TEXT NOT NULL CHECK (state IN ('done', 'failed')),
    begun      TEXT NOT NULL,     -- of the last attempt
    ended      TEXT NOT NULL,
    seconds    REAL NOT NULL,     -- that the last attempt took
    attempts   INTEGER NOT NULL,
    session    INTEGER NOT NULL REFERENCES session,
    UNIQUE (board, conditions, repeat)
);
CREATE TABLE value (
    point INTEGER NOT NULL REFERENCES point ON DELETE CASCADE,
    name  TEXT NOT NULL,
    kind  TEXT NOT NULL CHECK (kind IN ('int', 'float', 'bool', 'text', 'bytes', 'none')),
    value,                        -- NULL: None, or of kind 'float' not a number; whole numbers beyond 64 bits as text
    PRIMARY KEY (point, name)
) WITHOUT ROWID;
CREATE TABLE array (
    id    INTEGER PRIMARY KEY,
    point INTEGER NOT NULL REFERENCES point ON DELETE CASCADE,
    name  TEXT NOT NULL,
    dtype TEXT NOT NULL,          -- of numpy, with byte order: '<u2'
    shape TEXT NOT NULL,          -- JSON: [4096]
    data  BLOB NOT NULL,          -- the elements, last index fastest
    UNIQUE (point, name)
);
CREATE TABLE error (              -- everything that went wrong, also where it was mended
    id      INTEGER PRIMARY KEY,
    session INTEGER NOT NULL REFERENCES session,
    board   INTEGER REFERENCES board,
    point   INTEGER REFERENCES point ON DELETE SET NULL,
    step    TEXT NOT NULL,        -- name of the step that it happened in
    attempt INTEGER NOT NULL,
    at      TEXT NOT NULL,
    class   TEXT NOT NULL,        -- 'TimedOut'
    text    TEXT NOT NULL
);
CREATE TABLE step (               -- set-up steps that were carried out, and safe-state steps
    id         INTEGER PRIMARY KEY,
    session    INTEGER NOT NULL REFERENCES session,
    board      INTEGER REFERENCES board, -- NULL: of all boards together
    name       TEXT NOT NULL,
    kind       TEXT NOT NULL CHECK (kind IN ('setup', 'safe')),
    conditions TEXT NOT NULL,
    begun      TEXT NOT NULL,
    seconds    REAL NOT NULL,
    problem    TEXT               -- NULL: it was carried out
);
CREATE VIEW result AS
    SELECT board.port AS port, point.conditions AS conditions, point.repeat AS repeat, value.name AS name,
           value.value AS value
    FROM point JOIN board ON board.id = point.board JOIN value ON value.point = point.id
    WHERE point.state = 'done'
    ORDER BY board.id, point.id, value.name;
"""

"""What a catalog holds, so that it can be compared with that of an undisturbed run."""
import contextlib
import sqlite3

NOT_COMPARED = {"id", "added_at"}  # what is named by ids is compared by its names
NO_MEANING = "key NOT IN ('library_path', 'importbegun')"  # notes of the run itself
NAMES = {"folders": "path", "projects": "name", "albums": "name", "keywords": "name", "people": "name",
         "photos": "path || ' ' || version_name",
         "stacks": "(SELECT path FROM photos WHERE photos.id = pick_photo_id)"}


def opened(library):
    return contextlib.closing(sqlite3.connect(library / "catalog.sqlite", isolation_level=None))


def tables(database):
    return [name for (name,) in database.execute("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name")
            if not name.startswith("sqlite_")]


def columns(database, table):
    return [row[1] for row in database.execute(f"PRAGMA table_info({table})") if row[1] not in NOT_COMPARED]


def rows_of(database, table, names, but):
    named = {row[3]: row[2] for row in database.execute(f"PRAGMA foreign_key_list({table})")}
    named["pick_photo_id"] = "photos"
    kept = [column for column in columns(database, table) if f"{table}.{column}" not in but]
    condition = NO_MEANING if table == "meta" else "TRUE"
    for values in database.execute(f"SELECT {', '.join(kept)} FROM {table} WHERE {condition}"):
        row = {column: names[named[column]].get(value, value) if column in named else value
               for column, value in zip(kept, values)}
        if row.get("key", "").startswith("import|"):  # which photo a file became
            row["value"] = names["photos"].get(int(row["value"]), row["value"])
        yield row


def content(database, but=()):
    """All rows of all tables, but for the columns `but`, in no order of chance; and the schema."""
    names = {table: dict(database.execute(f"SELECT id, {name} FROM {table}")) for table, name in NAMES.items()}
    found = {table: sorted(rows_of(database, table, names, but), key=repr) for table in tables(database)}
    found["the schema"] = database.execute("SELECT type, name, sql FROM sqlite_master ORDER BY 1, 2").fetchall()
    return found


def difference(found, wanted):
    """The first that is not as it should be."""
    for table in wanted:
        more = [row for row in found.get(table, []) if row not in wanted[table]][:1]
        less = [row for row in wanted[table] if row not in found.get(table, [])][:1]
        if more and less and isinstance(more[0], dict):
            differs = {key: (more[0][key], less[0][key]) for key in less[0] if more[0].get(key) != less[0][key]}
            return f"{table}: {differs} in {more[0].get('path', '')}"
        if found.get(table) != wanted[table]:
            return f"{table}: {len(found.get(table, []))} rows instead of {len(wanted[table])}, such as {more or less}"
    return "other tables"


def spoiled(database):
    """Changes one value of a random row in each column, and leaves out one row of each table, one after the other;
    says what is spoiled while it is, and puts it right again."""
    for table in tables(database):
        condition = NO_MEANING if table == "meta" else "TRUE"
        chosen = f"WHERE rowid = (SELECT rowid FROM {table} WHERE {condition} ORDER BY random() LIMIT 1)"
        changes = {f"{table}.{name}": f"UPDATE {table} SET {name} = CASE typeof({name}) WHEN 'text' THEN {name} || '0' "
                   f"WHEN 'null' THEN 1 ELSE {name} + 1000000 END {chosen}" for name in columns(database, table)}
        for what, change in (changes | {f"a row of {table}": f"DELETE FROM {table} {chosen}"}).items():
            database.execute("BEGIN")
            if database.execute(change).rowcount:
                yield what
            database.execute("ROLLBACK")

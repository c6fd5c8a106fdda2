#!/usr/bin/python3
"""Packs a folder: zip.py ARCHIVE FOLDER SECONDS. The same folder gives the same bytes, wherever and whenever.

The entries are sorted, all have the one time that is given in seconds since 1970, and no owner. What may be executed
keeps that; no other permission of the machine is kept.
"""

import datetime
import pathlib
import sys
import zipfile

_UNIX = 3  # "version made by", upper byte: the permissions are in the upper half of the external attributes
_FOLDER, _FILE, _DOS_FOLDER = 0o040755, 0o100644, 0x10


def pack(archive: pathlib.Path, folder: pathlib.Path, second: int) -> None:
    """Writes the archive, with the folder's own name at its top."""
    when = datetime.datetime.fromtimestamp(second, datetime.timezone.utc).timetuple()[:6]
    with zipfile.ZipFile(archive, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as made:
        for path in sorted([folder, *folder.rglob("*")], key=lambda each: each.as_posix()):
            if path.is_symlink():
                raise SystemExit(f"{path} is a link, which some programs unpack as a text")
            name = path.relative_to(folder.parent).as_posix()
            entry = zipfile.ZipInfo(name + "/" if path.is_dir() else name, when)
            entry.create_system = _UNIX
            if path.is_dir():
                entry.external_attr = _FOLDER << 16 | _DOS_FOLDER
                made.writestr(entry, b"")
            else:
                entry.external_attr = (_FILE | path.stat().st_mode & 0o111) << 16
                entry.compress_type = zipfile.ZIP_DEFLATED
                made.writestr(entry, path.read_bytes())


if __name__ == "__main__":
    pack(pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), int(sys.argv[3]))

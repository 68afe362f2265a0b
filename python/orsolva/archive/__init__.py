"""Archives of many stations and years: judged once, kept as Parquet, watched for changes.

    orsolva archive init store
    orsolva archive run store /data/rinex

    import orsolva.archive

    archive = orsolva.archive.open("store")
    print(archive.sql("SELECT station, avg(mp_rms_m) FROM signals WHERE signal = '1C' GROUP BY ALL"))

See docs/user/archive.md.
"""
from __future__ import annotations

from .._table import imported

imported("pyarrow", "orsolva.archive")

from .reading import Archive, open  # noqa: E402
from .settings import ArchiveError  # noqa: E402
from .trends import StationTrend, trends  # noqa: E402

__all__ = ["Archive", "ArchiveError", "StationTrend", "open", "trends"]

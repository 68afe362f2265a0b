"""Whether a store is whole: `orsolva archive check`."""
from __future__ import annotations

from collections import Counter
from collections.abc import Callable, Iterator
from dataclasses import dataclass, field

import pyarrow.compute as pc

from .places import content_now
from .store import Bundle, DamagedBundle, Store, counts_by_run

_NAMED = 20


@dataclass
class Findings:
    """What was found.

    Attributes:
        runs: by state
        rows: by table
        problems: what another run repairs or a person has to look at; at most a few of each kind are named
        notes: what is worth knowing
    """

    runs: Counter[str] = field(default_factory=Counter)
    rows: Counter[str] = field(default_factory=Counter)
    stations: set[str] = field(default_factory=set)
    problems: list[str] = field(default_factory=list)
    notes: list[str] = field(default_factory=list)
    failed: list[str] = field(default_factory=list)


def check(store: Store, sources: bool = False, seen: Callable[[str], object] = lambda _: None) -> Findings:
    """Reads every bundle.

    Args:
        sources: also looks whether the files that were judged are there as they were
    """
    findings = Findings()
    for bundle in sorted(store.bundles()):
        seen(bundle.name)
        try:
            findings.problems += _problems_of(store, bundle, findings)
            if sources:
                findings.notes += _sources_of(store, bundle)
        except (DamagedBundle, OSError) as error:
            findings.problems.append(f"{bundle.name}: {error}")
    findings.problems += [f"{name}: its writing did not end; the next run completes it" for name in sorted(store.unfinished())]
    findings.problems += [f"{name}: left by a writer that was ended; the next run removes it" for name in store.leftovers()]
    return findings


def _problems_of(store: Store, bundle: Bundle, findings: Findings) -> Iterator[str]:
    runs = store.read("runs", bundle)
    ids, names = runs["run_id"].to_pylist(), runs["name"].to_pylist()
    findings.runs.update(runs["state"].to_pylist())
    findings.stations.update(runs["station"].to_pylist())
    failed = runs.filter(pc.equal(runs["state"], "failed"))
    findings.failed += failed["error"].to_pylist()[: _NAMED - len(findings.failed)]
    for kind, values in (("run", ids), ("file name", names)):
        twice = [value for value, count in Counter(values).items() if count > 1]
        yield from (f"{bundle.name}: {kind} {value} is there more than once" for value in twice[:_NAMED])
    for table in store.tables:
        counts = counts_by_run(store.read(table, bundle))
        findings.rows[table] += sum(counts.get(run, 0) for run in ids)
        expected = dict(zip(ids, runs[f"{table}_rows"].to_pylist()))
        wrong = [name for name, run in zip(names, ids) if counts.get(run, 0) != (expected[run] or 0)]
        yield from (f"{bundle.name}: {table} has not all rows of {name}; run again with --repair" for name in wrong[:_NAMED])
        orphans = counts.keys() - set(ids)
        if orphans:
            yield f"{bundle.name}: {table} has {sum(counts[run] for run in orphans)} rows without a run; views leave them out"


def _sources_of(store: Store, bundle: Bundle) -> Iterator[str]:
    runs = store.read("runs", bundle)
    for source, content in zip(runs["source"].to_pylist(), runs["source_id"].to_pylist()):
        try:
            now = content_now(source, content.partition(":")[0])
        except OSError as error:
            yield f"{source}: cannot be read ({error.strerror})"
            continue
        if now is None:
            yield f"{source}: is gone; its figures stay"
        elif now != content:
            yield f"{source}: has changed; the next run judges it again"

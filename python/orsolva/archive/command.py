"""The command line: `orsolva archive ...`."""
from __future__ import annotations

import argparse
import calendar
import datetime
import pathlib
import re
import sys
import time
from collections import Counter
from collections.abc import Sequence
from typing import Any

from .checking import check
from .lease import Lease
from .plan import Choice, Counts, Plan, shard_of
from .progress import Progress, span_of
from .running import Outcome, Run, complete_unfinished, default_workers, remove_leftovers
from .settings import ArchiveError, Settings, buckets_for
from .store import Store, init
from .tables import TABLES
from .workers import DaskCluster, Processes, ThisProcess, Workers

GOOD, FAILED, WRONG_USAGE, INTERRUPTED = 0, 1, 2, 130
CLOSED_PIPE = 141
_ERRORS_NAMED = 20
_BUILT_IN_PROFILES = ("network", "station")


def main(arguments: Sequence[str] | None = None) -> int:
    """Runs a command. @return the exit code"""
    try:
        options = parser().parse_args(arguments)
        code: int = options.run(options)
        sys.stdout.flush()
        return code
    except BrokenPipeError:
        return CLOSED_PIPE
    except ArchiveError as error:
        print(f"orsolva archive: {error}", file=sys.stderr)
    except OSError as error:
        print(f"orsolva archive: {error}", file=sys.stderr)
    except KeyboardInterrupt:
        return INTERRUPTED
    return FAILED


def parser() -> argparse.ArgumentParser:
    """The parser of all commands."""
    top = argparse.ArgumentParser("orsolva archive", description="Judge archives of many stations and watch them change.")
    commands = top.add_subparsers(required=True, metavar="COMMAND")
    _add_init(commands.add_parser("init", help="make a store"))
    plan = commands.add_parser("plan", help="say what is new or changed; nothing is judged")
    _add_sources(plan, _plan)
    plan.add_argument("--list", action="store_true", help="name every file")
    run = commands.add_parser("run", help="judge what is new or changed")
    _add_sources(run, _run)
    where = run.add_mutually_exclusive_group()
    where.add_argument("--workers", type=_workers_number, metavar="N", help="processes of this machine (default: one per core; 0: this process alone)")
    where.add_argument("--dask", metavar="ADDRESS", help="scheduler of a Dask cluster, such as tcp://head:8786")
    run.add_argument("--quiet", action="store_true", help="no progress and no counts; errors only")
    trends = commands.add_parser("trends", help="stations by state, and what changed")
    trends.set_defaults(run=_trends)
    _add_span(trends)
    trends.add_argument("--all", action="store_true", help="good stations and old changes, too")
    page = commands.add_parser("page", help="write pages of the network and its stations")
    page.set_defaults(run=_page)
    _add_span(page)
    page.add_argument("--output", required=True, metavar="FOLDER", help="where index.html is written")
    page.add_argument("--days", type=_positive, default=400, metavar="N", help="days of the heat map (default: 400)")
    page.add_argument("--reports", metavar="ADDRESS", help="where the report of a file is, with {station}, {name}, {year}, {day} and {date} in it")
    check = commands.add_parser("check", help="count what there is, and find what is missing")
    check.set_defaults(run=_check)
    check.add_argument("store", metavar="STORE")
    check.add_argument("--sources", action="store_true", help="look at the judged files, too: gone or changed")
    return top


def _add_init(command: argparse.ArgumentParser) -> None:
    command.set_defaults(run=_init)
    command.add_argument("store", metavar="STORE", help="a folder, or an address such as s3://bucket/store")
    command.add_argument("--stations", type=_positive, default=1, metavar="N", help="stations to expect: sets the buckets (default: up to 47)")
    command.add_argument("--buckets", type=_positive, metavar="N", help="files per table and month, instead of --stations")
    command.add_argument("--verify", action="store_true", help="files are the same when their SHA-256 is, not their time and size")
    command.add_argument("--without", choices=list(TABLES), action="append", default=[], metavar="TABLE", help="leave a table out")
    command.add_argument("--elevation", type=float, metavar="DEGREES", help="elevation cut-off (default: 10)")
    command.add_argument("--systems", metavar="LETTERS", help="letters of the systems (default: all)")
    command.add_argument("--profile", metavar="NAME", help="limits to grade by: network, station or a file")


def _add_sources(command: argparse.ArgumentParser, run: Any) -> None:
    command.set_defaults(run=run)
    command.add_argument("store", metavar="STORE")
    command.add_argument("sources", nargs="+", metavar="SOURCE", help="folders, or addresses such as s3://bucket/rinex")
    command.add_argument("--nav", nargs="+", default=[], metavar="SOURCE", help="where navigation files are, if not in the sources")
    command.add_argument("--since", type=_since, metavar="DATE", help="first day: 2020, 2020-06 or 2020-06-25")
    command.add_argument("--until", type=_until, metavar="DATE", help="last day")
    command.add_argument("--shard", type=str, metavar="K/N", help="the K-th of N parts, for job arrays")
    command.add_argument("--retry", action="store_true", help="judge files again that failed")
    command.add_argument("--repair", action="store_true", help="judge files again of which rows are missing, as `check` reports")


def _add_span(command: argparse.ArgumentParser) -> None:
    command.add_argument("store", metavar="STORE")
    command.add_argument("--since", type=_since, metavar="DATE", help="first day: 2020, 2020-06 or 2020-06-25")
    command.add_argument("--until", type=_until, metavar="DATE", help="last day")


def _positive(text: str) -> int:
    number = int(text)
    if not 1 <= number <= 65536:
        raise argparse.ArgumentTypeError(f"{text}: expected 1 to 65536")
    return number


def _workers_number(text: str) -> int:
    return 0 if text == "0" else _positive(text)


def _since(text: str) -> datetime.date:
    return _span(text)[0]


def _until(text: str) -> datetime.date:
    return _span(text)[1]


def _span(text: str) -> tuple[datetime.date, datetime.date]:
    """First and last day of a year, a month or a day."""
    parts = re.fullmatch(r"(\d{4})(?:-(\d{1,2})(?:-(\d{1,2}))?)?", text, re.ASCII)
    try:
        if parts is None:
            raise ValueError("of another form")
        year, first, day = (None if part is None else int(part) for part in parts.groups())
        assert year is not None
        begin = datetime.date(year, 1 if first is None else first, 1 if day is None else day)
        last = 12 if first is None else first
        return begin, datetime.date(year, last, calendar.monthrange(year, last)[1] if day is None else day)
    except ValueError as error:
        raise argparse.ArgumentTypeError(f"{text}: expected a year, month or day of the calendar, such as 2020, 2020-06 or 2020-06-25") from error


def _init(options: argparse.Namespace) -> int:
    judging: dict[str, Any] = {}
    if options.elevation is not None:
        judging["elevation_deg"] = options.elevation
    if options.systems is not None:
        judging["systems"] = options.systems
    text = None
    if options.profile in _BUILT_IN_PROFILES:
        judging["profile"] = options.profile
    elif options.profile is not None:
        text = pathlib.Path(options.profile).read_text(encoding="utf-8")
    buckets = options.buckets or buckets_for(options.stations)
    content = "sha256" if options.verify else "time"
    store = init(options.store, Settings(buckets, content, tuple(sorted(set(options.without))), judging, text))
    print(f"{store.address}: a store with {store.settings.buckets} buckets")
    return GOOD


def _planned(options: argparse.Namespace, progress: Progress) -> Plan:
    shard = shard_of(options.shard) if options.shard else (1, 1)
    plan = Plan(Store(options.store), Choice(options.since, options.until, shard, options.retry, options.repair))
    try:
        plan.take(options.sources, options.nav, progress.listed)
        plan.compare(own_navigation=not options.nav)
    except BaseException:
        plan.close()
        raise
    finally:
        progress.end()
    return plan


def _plan(options: argparse.Namespace) -> int:
    with _planned(options, Progress()) as plan:
        print(_words_of(plan.counts))
        for path, taken in plan.doubles():
            print(f"left out: {path} (same data as {taken})")
        if options.list:
            for _, jobs in plan.jobs():
                for job in jobs:
                    print(job.path)
        return _result(Outcome(errors=list(plan.left_out.values())))


def _words_of(counts: Counts) -> str:
    parts = [f"{counts.observations} observation files", f"{counts.navigation} navigation files"]
    if counts.other:
        parts.append(f"{counts.other} other files")
    if counts.doubles:
        parts.append(f"{counts.doubles} left out, as another has the same data")
    if counts.unreadable:
        parts.append(_unreadable(counts))
    to_do = [f"{counts.new} new", f"{counts.changed} changed", f"{counts.repaired} to repair", f"{counts.done} done"]
    return f"{', '.join(parts)}\n{', '.join(to_do)}"


def _unreadable(counts: Counts) -> str:
    return f"{counts.unreadable} left out that cannot be read (the first: {counts.first_unreadable})"


def _run(options: argparse.Namespace) -> int:
    progress = Progress(options.quiet)
    store = Store(options.store)
    shard = shard_of(options.shard) if options.shard else (1, 1)
    begun = time.monotonic()
    with Lease(store.place, shard) as lease:
        if shard == (1, 1):
            remove_leftovers(store)
        with _planned(options, progress) as plan:
            if not options.quiet:
                print(_words_of(plan.counts))
            elif plan.counts.unreadable:
                print(f"orsolva archive: {_unreadable(plan.counts)}", file=sys.stderr)
            to_do = plan.counts.to_do
            outcome = _judged(plan, options, lease, progress) if to_do else Outcome()
            if not outcome.interrupted and not outcome.errors:
                outcome.errors += complete_unfinished(plan, lease)
            outcome.errors += plan.left_out.values()
    if to_do and not options.quiet:
        _say(outcome, time.monotonic() - begun)
    return _result(outcome)


def _judged(plan: Plan, options: argparse.Namespace, lease: Lease, progress: Progress) -> Outcome:
    workers = _workers(options)
    outcome = Outcome(interrupted=True)
    try:
        outcome = Run(plan, workers, lease, progress).go()
    finally:
        workers.close(now=outcome.interrupted)
    return outcome


def _workers(options: argparse.Namespace) -> Workers:
    if options.dask:
        return DaskCluster(options.dask)
    count = default_workers() if options.workers is None else options.workers
    return Processes(count) if count > 0 else ThisProcess()


def _say(outcome: Outcome, seconds: float) -> None:
    files = outcome.judged + outcome.incomplete + outcome.failed
    rate = f", {files / seconds:.1f} a second" if seconds > 1 else ""
    print(f"{files} files in {span_of(seconds)}{rate}: {outcome.judged} judged, {outcome.incomplete} incomplete, {outcome.failed} failed")
    if outcome.set_aside:
        print(f"{outcome.set_aside} changed or were removed while they were judged: run again")


def _result(outcome: Outcome) -> int:
    """Says what went wrong. @return the exit code"""
    for error in outcome.errors[:_ERRORS_NAMED]:
        print(f"orsolva archive: {error}", file=sys.stderr)
    if len(outcome.errors) > _ERRORS_NAMED:
        print(f"orsolva archive: and {len(outcome.errors) - _ERRORS_NAMED} more errors", file=sys.stderr)
    if outcome.interrupted:
        print("interrupted; what was judged is in the store. Run again for the rest.", file=sys.stderr)
        return INTERRUPTED
    return FAILED if outcome.errors else GOOD


def _trends(options: argparse.Namespace) -> int:
    from .reading import open as open_store
    from .trends import STATES, network_changes, trends

    with open_store(options.store) as archive:
        found = sorted(trends(archive, options.since, options.until), key=lambda one: (STATES.index(one.state), one.station))
        left_out = archive.in_the_future(options.until)
    for trend in found:
        if trend.state == "good" and not options.all:
            continue
        print(f"{trend.station}  {trend.state:9}  {trend.reason}".rstrip())
        for change in trend.changes if options.all else []:
            print(f"{'':{len(trend.station)}}  {change}")
    for shared in network_changes(found):
        print(f"network: {shared}")
    if left_out:
        print(left_out)
    states = Counter(trend.state for trend in found)
    print(", ".join(f"{states[state]} {state}" for state in STATES if states[state]) or "no stations")
    return GOOD


def _page(options: argparse.Namespace) -> int:
    from .pages import write_pages
    from .reading import open as open_store

    folder = pathlib.Path(options.output)
    with open_store(options.store) as archive:
        states = write_pages(archive, folder, options.since, options.until, options.days, options.reports)
    print(f"{folder / 'index.html'}: {sum(states.values())} stations")
    return GOOD


def _check(options: argparse.Namespace) -> int:
    store = Store(options.store)
    found = check(store, options.sources)
    print(f"{sum(found.runs.values())} runs of {len(found.stations)} stations: " + ", ".join(f"{n} {state}" for state, n in sorted(found.runs.items())))
    print("rows: " + ", ".join(f"{count} {table}" for table, count in found.rows.items()))
    for text in found.failed:
        print(f"failed: {text}")
    for text in [*found.notes, *found.problems]:
        print(text)
    return FAILED if found.problems else GOOD



// What struck the whole receiver, told apart from what struck single satellites.
import type { Detail, Event, Satellite } from './detail';
import { HARD } from './events';

/** A satellite that sets and rises again is away for longer. */
const LONGEST_GAP = 2 * 3600 * 1000;
/** Events at one epoch on more satellites than this share of those tracked have a common cause. */
const COMMON_SHARE = 0.3;
const LEAST_COMMON = 4;

export interface Span {
  from: number;
  to: number;
}

/** Times without any satellite, between the first and the last epoch. */
export function holes(detail: Detail): Span[] {
  const step = detail.interval * 1000;
  const arcs = detail.satellites.flatMap((s) => s.arcs).sort((a, b) => a.from - b.from);
  const found: Span[] = [];
  let end = arcs.length > 0 ? arcs[0].to : 0;
  for (const arc of arcs) {
    if (arc.from > end + 1.5 * step) found.push({ from: end + step, to: arc.from });
    end = Math.max(end, arc.to);
  }
  return found;
}

function elevationAt(satellite: Satellite, time: number): number {
  let low = 0;
  let high = satellite.rows;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (satellite.time[middle] < time) low = middle + 1;
    else high = middle;
  }
  return satellite.rows === 0 ? NaN : satellite.elevation[Math.min(low, satellite.rows - 1)];
}

/** Breaks of one satellite's tracking, above the cut-off on both sides, while others were tracked. */
export function gapsInView(detail: Detail, satellite: Satellite, common: Span[]): Span[] {
  const step = detail.interval * 1000;
  const gaps: Span[] = [];
  for (let i = 1; i < satellite.arcs.length; ++i) {
    const from = satellite.arcs[i - 1].to;
    const to = satellite.arcs[i].from;
    if (to - from > LONGEST_GAP || common.some((hole) => hole.from <= from + step && hole.to >= to)) continue;
    if (elevationAt(satellite, from) > detail.cutoff && elevationAt(satellite, to) > detail.cutoff) {
      gaps.push({ from: from + step, to });
    }
  }
  return gaps;
}

function trackedAt(detail: Detail, time: number): number {
  return detail.satellites.filter((s) => s.arcs.some((arc) => arc.from <= time && time <= arc.to)).length;
}

/** Splits slips and code jumps into those of single satellites and the epochs that struck many at once. */
export function splitEvents(detail: Detail): { single: Event[]; commonTimes: number[] } {
  const byTime = new Map<number, Event[]>();
  for (const e of detail.events) {
    if (HARD.has(e.kind)) byTime.set(e.time, [...(byTime.get(e.time) ?? []), e]);
  }
  const single: Event[] = [];
  const commonTimes: number[] = [];
  for (const [time, events] of byTime) {
    const struck = new Set(events.map((e) => e.satellite)).size;
    if (struck >= LEAST_COMMON && struck > COMMON_SHARE * trackedAt(detail, time)) commonTimes.push(time);
    else single.push(...events);
  }
  return { single, commonTimes };
}

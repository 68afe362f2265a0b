// The verdict of a profile: its grade, and every criterion that was missed and by how much.
import { el } from './dom';
import { fixed } from './format';
import type { Outcome, Report } from './report';

function line(o: Outcome): string {
  const subject = [o.subject, o.signal].filter((t) => t !== null && t !== undefined).join(' ');
  const side = o.direction === 'at_least' ? 'below' : 'above';
  const missed = o.missed_by === null ? '' : `, ${fixed(Math.abs(o.missed_by), 3)} ${o.unit} ${side} the limit`;
  return `${o.criterion}${subject ? ` (${subject})` : ''}: ${fixed(o.value, 3)} ${o.unit}${missed}`;
}

export function verdictPanel(report: Report): HTMLElement | null {
  const verdict = report.profile;
  if (!verdict) return null;
  const missed = verdict.outcomes.filter((o) => o.grade === 'fail');
  const shown = missed.slice(0, 12);
  const more = missed.length > shown.length ? el('li', {}, `and ${missed.length - shown.length} more`) : null;
  const tone = verdict.grade === 'good' ? 'good' : verdict.passed ? 'fair' : 'bad';
  const said = verdict.passed ? `Passed: ${verdict.grade}` : verdict.grade === 'fail' ? 'Failed' : `Not passed: ${verdict.grade}`;
  return el(
    'div',
    { class: `verdict ${tone}` },
    el('strong', {}, said),
    el('p', { class: 'help' }, `Profile ${verdict.title || verdict.profile}, ${verdict.outcomes.length} criteria held against the figures.`),
    shown.length > 0 ? el('ul', {}, ...shown.map((o) => el('li', {}, line(o))), more) : null,
  );
}

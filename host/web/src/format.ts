// Numbers and times as text; "-" where there are no data.

export function fixed(value: number | null | undefined, digits: number): string {
  return value === null || value === undefined || !Number.isFinite(value) ? '-' : value.toFixed(digits);
}

export function percent(ratio: number | null | undefined): string {
  return ratio === null || ratio === undefined ? '-' : (100 * ratio).toFixed(2) + ' %';
}

/** 1 234 567 */
export function whole(value: number | null | undefined): string {
  if (value === null || value === undefined || !Number.isFinite(value)) return '-';
  return String(Math.round(value)).replace(/\B(?=(\d{3})+$)/g, '\u202f');
}

/** A figure with its unit: ratios in percent, counts with their digits in groups. */
export function withUnit(value: number | null, unit: string, digits: number): string {
  if (value === null) return '-';
  if (unit === '1') return percent(value);
  if (unit === 'm') return `${fixed(value, 3)} m`;
  return unit === 'h' ? `${fixed(value, 2)} h` : digits > 0 ? fixed(value, digits) : whole(value);
}

/** "2020-06-25 00:00:30" */
export function timeText(ms: number): string {
  if (!Number.isFinite(ms)) return '';
  const text = new Date(Math.round(ms)).toISOString().replace('T', ' ').replace('Z', '');
  return text.endsWith('.000') ? text.slice(0, -4) : text;
}

/** "00:00:30" */
export function clock(ms: number): string {
  return timeText(ms).slice(11);
}

export function span(ms: number): string {
  const minutes = Math.round(ms / 60000);
  if (minutes < 2) return `${Math.round(ms / 1000)} s`;
  return minutes < 120 ? `${minutes} min` : `${(minutes / 60).toFixed(1)} h`;
}

/** The last part of a path. */
export function baseName(path: string): string {
  return path.slice(path.lastIndexOf('/') + 1);
}

// The log of events, the latest first, as they happen.
import { el } from '../dom';
import { timeText } from '../format';
import { section } from '../layout';
import { linkTo } from './stations';
import { kindText, type LiveEvent, load } from './state';

const MOST = 300;
const POLL_S = 20;
const PAUSE_MS = 3000;

interface Answer {
  events: LiveEvent[];
  last_event_id: number;
}

function item(event: LiveEvent): HTMLElement {
  const word = event.state === 'note' ? '' : `${event.state} `;
  const tone = event.state === 'raised' ? (event.severity === 'bad' ? 'bad' : 'fair') : event.state === 'cleared' ? 'good' : '';
  return el(
    'li',
    { class: 'event' },
    el('time', { datetime: event.time }, timeText(Date.parse(event.time)).slice(0, 19)),
    ' ',
    el('a', { href: linkTo(event.station) }, event.station),
    ' ',
    el('strong', { class: `state ${tone}` }, `${word}${kindText(event.kind, event.subject)}`),
    event.seen === undefined ? null : el('p', {}, event.seen),
    event.advice === undefined ? null : el('p', { class: 'help' }, event.advice),
  );
}

export class EventLog {
  readonly element = section('events', 'Events', el('p', { class: 'help' }, 'The latest first; times are UTC.'));
  readonly events: LiveEvent[] = [];
  private readonly list = el('ol', { class: 'events' });
  private readonly none = el('p', {}, 'None yet.');
  private last = 0;
  private hours = false;
  private shownStation: string | null = null;

  constructor() {
    const all = el('input', { type: 'checkbox' });
    all.addEventListener('change', () => {
      this.hours = all.checked;
      this.fill();
    });
    this.element.append(el('label', { class: 'control' }, all, el('span', {}, 'Notes too: connections and closed hours')), this.none, this.list);
  }

  /** Events of one station, or with null of all. */
  of(station: string | null): void {
    this.shownStation = station;
    this.fill();
  }

  /** Asks for ever: the service replies when there is something new. */
  async follow(): Promise<void> {
    for (;;) {
      try {
        const { events, last_event_id } = await load<Answer>(`events.json?after=${this.last}&wait=${POLL_S}`);
        if (last_event_id < this.last) this.events.length = 0; // the service has started again
        this.last = last_event_id;
        this.events.push(...events);
        this.events.splice(0, Math.max(0, this.events.length - 10 * MOST));
        if (events.length > 0) this.fill();
      } catch {
        await new Promise((resolve) => setTimeout(resolve, PAUSE_MS));
      }
    }
  }

  private fill(): void {
    const wanted = this.events.filter((e) => (this.hours || e.state !== 'note') && (this.shownStation === null || e.station === this.shownStation));
    this.none.hidden = wanted.length > 0;
    this.list.replaceChildren(...wanted.slice(-MOST).reverse().map(item));
  }
}

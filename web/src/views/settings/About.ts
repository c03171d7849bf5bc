// What is there, with versions.
import { css, html, LitElement, nothing } from 'lit';
import { customElement } from 'lit/decorators.js';

import { Reads } from '../../state/Store.js';
import { text } from '../../text/text.js';
import { base } from '../../theme/base.js';
import { formatMoment } from '../../widgets/format.js';
import { viewStyle } from '../viewStyle.js';
import { sectionStyle } from './settingsStyle.js';

declare const QELM_VERSION: string; // of the build

@customElement('qelm-set-about')
export class About extends LitElement {
  static override styles = [
    base,
    viewStyle,
    sectionStyle,
    css`
      dl {
        display: grid;
        grid-template-columns: minmax(6rem, 10rem) minmax(0, 1fr);
        font-size: 0.8125rem;
      }
      dt,
      dd {
        padding: 0.375rem 0;
        border-bottom: var(--hair) solid var(--line);
        overflow-wrap: anywhere;
      }
      dt {
        color: var(--faint);
      }
    `,
  ];

  private readonly bus = new Reads(this, (state) => state.bus);
  private readonly who = new Reads(this, (state) => state.who);

  override render() {
    const { facts } = text.settings;
    const bus = this.bus.value;
    const who = this.who.value;
    if (!bus) return nothing;
    const words = text.state.words;
    const joined = (...parts: (string | null)[]) =>
      parts.filter((part) => part !== null).join(', ');
    const since = bus.daemon.since ? `${facts.since} ${formatMoment(bus.daemon.since)}` : null;
    const broker = bus.broker;
    const yes = (flag: boolean | null) =>
      flag === null ? facts.unknown : flag ? facts.yes : facts.no;
    const rows: [string, string][] = [
      [facts.page, QELM_VERSION],
      [facts.daemon, joined(bus.daemon.version, words[bus.daemon.state], since)],
      [facts.adapter, joined(bus.adapter.version, words[bus.adapter.state], bus.adapter.device)],
      [facts.broker, broker ? joined(words[broker.state], broker.host, broker.detail) : facts.none],
      [facts.bus, joined(bus.name, bus.virtual ? facts.virtual : null)],
      [facts.id, bus.id],
      [facts.pace, bus.pace === null ? facts.unknown : `${bus.pace} %`],
      [facts.polling, yes(bus.polling)],
      [
        facts.account,
        joined(who?.account ?? facts.nobody, who?.role ? text.roles[who.role] : null),
      ],
    ];
    return html`<dl>
      ${rows.map(
        ([name, value]) =>
          html`<dt>${name}</dt>
            <dd>${value}</dd>`,
      )}
    </dl>`;
  }
}

import { html, LitElement } from 'lit';
import { customElement, state } from 'lit/decorators.js';

import { text } from '../../text/text.js';
import { base } from '../../theme/base.js';
import { chooseTheme, chosenTheme, themes } from '../../theme/theme.js';
import { viewStyle } from '../viewStyle.js';
import { sectionStyle } from './settingsStyle.js';

@customElement('qelm-set-theme')
export class Appearance extends LitElement {
  static override styles = [base, viewStyle, sectionStyle];

  @state() private theme = chosenTheme();

  override render() {
    const words = text.settings.theme;
    return html`<fieldset class="ticks" role="radiogroup" aria-label=${words.label}>
        ${themes.map(
          (theme) =>
            html`<label class="row">
              <input
                type="radio"
                name="theme"
                .checked=${theme === this.theme}
                @change=${() => {
                  this.theme = theme;
                  chooseTheme(theme);
                }}
              />
              ${words[theme]}
            </label>`,
        )}
      </fieldset>
      <p class="note">${words.note}</p>`;
  }
}

// The texts in the language of the page. All that people read is in one object.
import { en } from './en.js';

export type Texts = typeof en;

export const text: Texts = en;

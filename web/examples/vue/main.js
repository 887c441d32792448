import { createApp } from 'vue';
import Signature from './Signature.vue';

createApp(Signature).mount('#page');

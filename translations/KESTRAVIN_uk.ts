<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="uk" sourcelanguage="en">
<context>
    <name>Velmora::Application::Application</name>
    <message>
        <source>Show</source>
        <translation>Показати</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Вихід</translation>
    </message>
</context>
<context>
    <name>Velmora::Application::ServiceManager</name>
    <message>
        <source>ERROR</source>
        <translation>ПОМИЛКА</translation>
    </message>
    <message>
        <source>COULD NOT COMMUNICATE WITH SERVICE.</source>
        <translation>НЕ ВДАЛОСЯ ЗВ’ЯЗАТИСЯ ЗІ СЛУЖБОЮ.</translation>
    </message>
    <message>
        <source>ERROR PARSING APPVERSION, REINSTALL APPLICATION</source>
        <translation>ПОМИЛКА ЧИТАННЯ ВЕРСІЇ ПРОГРАМИ, ПЕРЕВСТАНОВІТЬ ПРОГРАМУ</translation>
    </message>
    <message>
        <source>SERVICE VERSION IS DIFFERENT THAN APPLICATION VERSION, REINSTALL APPLICATION</source>
        <translation>ВЕРСІЯ СЛУЖБИ ВІДРІЗНЯЄТЬСЯ ВІД ВЕРСІЇ ПРОГРАМИ, ПЕРЕВСТАНОВІТЬ ПРОГРАМУ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::AboutWidget</name>
    <message>
        <source>Build date </source>
        <translation>Дата збірки </translation>
    </message>
    <message>
        <source>COPYRIGHT © %1 BRANTEL. ALL RIGHTS RESERVED.</source>
        <translation>© %1 BRANTEL. УСІ ПРАВА ЗАХИЩЕНО.</translation>
    </message>
    <message>
        <source>CLOSE</source>
        <translation>ЗАКРИТИ</translation>
    </message>
    <message>
        <source>This program uses %1, licensed under</source>
        <translation>Ця програма використовує %1 за ліцензією</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::AdWidget</name>
    <message>
        <source>CLOSE</source>
        <translation>ЗАКРИТИ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::DriveHealthInfoWidget</name>
    <message>
        <source>LESS THAN 10% OF FREE DISK SPACE LEFT.</source>
        <translation>НА ДИСКУ ЗАЛИШИЛОСЯ МЕНШЕ 10% ВІЛЬНОГО МІСЦЯ.</translation>
    </message>
    <message>
        <source>LESS THAN 20% OF FREE DISK SPACE LEFT.</source>
        <translation>НА ДИСКУ ЗАЛИШИЛОСЯ МЕНШЕ 20% ВІЛЬНОГО МІСЦЯ.</translation>
    </message>
    <message>
        <source>LESS THAN 10% OF REMAINING DISK LIFE LEFT.</source>
        <translation>ЗАЛИШИЛОСЯ МЕНШЕ 10% РЕСУРСУ ДИСКА.</translation>
    </message>
    <message>
        <source>LESS THAN 70% OF REMAINING DISK LIFE LEFT.</source>
        <translation>ЗАЛИШИЛОСЯ МЕНШЕ 70% РЕСУРСУ ДИСКА.</translation>
    </message>
    <message>
        <source>DRIVE CAN WORK BETTER IF CONNECTED TO FASTER SATA CONTROLLER.</source>
        <translation>ДИСК МОЖЕ ПРАЦЮВАТИ КРАЩЕ, ЯКЩО ПІДКЛЮЧИТИ ЙОГО ДО ШВИДШОГО КОНТРОЛЕРА SATA.</translation>
    </message>
    <message>
        <source>FIRMWARE UPDATE AVAILABLE FOR DRIVE.</source>
        <translation>ДЛЯ ДИСКА ДОСТУПНЕ ОНОВЛЕННЯ ПРОШИВКИ.</translation>
    </message>
    <message>
        <source>DRIVE STATUS</source>
        <translation>СТАН ДИСКА</translation>
    </message>
    <message>
        <source>FREE SPACE</source>
        <translation>ВІЛЬНЕ МІСЦЕ</translation>
    </message>
    <message>
        <source>LIFE REMAINING</source>
        <translation>ЗАЛИШКОВИЙ РЕСУРС</translation>
    </message>
    <message>
        <source>BAD SECTORS</source>
        <translation>ПОШКОДЖЕНІ СЕКТОРИ</translation>
    </message>
    <message>
        <source>SATA SPEED</source>
        <translation>ШВИДКІСТЬ SATA</translation>
    </message>
    <message>
        <source>FIRMWARE UPDATE</source>
        <translation>ОНОВЛЕННЯ ПРОШИВКИ</translation>
    </message>
    <message>
        <source>CLOSE</source>
        <translation>ЗАКРИТИ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::FirmwareUpdatePage</name>
    <message>
        <source>FIRMWARE UPDATE</source>
        <translation>ОНОВЛЕННЯ ПРОШИВКИ</translation>
    </message>
    <message>
        <source>SSD MODEL:</source>
        <translation>МОДЕЛЬ SSD:</translation>
    </message>
    <message>
        <source>FIRMWARE VERSION:</source>
        <translation>ВЕРСІЯ ПРОШИВКИ:</translation>
    </message>
    <message>
        <source>AVAILABLE UPDATES:</source>
        <translation>ДОСТУПНІ ОНОВЛЕННЯ:</translation>
    </message>
    <message>
        <source>ANALYZED:</source>
        <translation>ПРОАНАЛІЗОВАНО:</translation>
    </message>
    <message>
        <source>CHECK FOR UPDATES</source>
        <translation>ПЕРЕВІРИТИ ОНОВЛЕННЯ</translation>
    </message>
    <message>
        <source>UPDATE FIRMWARE</source>
        <translation>ОНОВИТИ ПРОШИВКУ</translation>
    </message>
    <message>
        <source>NO AVAILABLE UPDATES</source>
        <translation>НЕМАЄ ДОСТУПНИХ ОНОВЛЕНЬ</translation>
    </message>
    <message>
        <source>NO DATA</source>
        <translation>НЕМАЄ ДАНИХ</translation>
    </message>
    <message>
        <source>NOT AVAILABLE</source>
        <translation>НЕДОСТУПНО</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::HomePage</name>
    <message>
        <source>CHOOSE YOUR DRIVE</source>
        <translation>ОБЕРІТЬ ДИСК</translation>
    </message>
    <message>
        <source>WELCOME</source>
        <translation>ЛАСКАВО ПРОСИМО</translation>
    </message>
    <message>
        <source>SELECT THE DRIVE YOU WANT TO LOOK AFTER.</source>
        <translation>ОБЕРІТЬ ДИСК, ЗА ЯКИМ ХОЧЕТЕ СТЕЖИТИ.</translation>
    </message>
    <message>
        <source>SEARCHING FOR DRIVES...</source>
        <translation>ПОШУК ДИСКІВ...</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::MainWindow</name>
    <message>
        <source>KESTRAVIN SSD</source>
        <translation>KESTRAVIN SSD</translation>
    </message>
    <message>
        <source>UPDATE AVAILABLE</source>
        <translation>ДОСТУПНЕ ОНОВЛЕННЯ</translation>
    </message>
    <message>
        <source>APPLICATION UPDATE AVAILABLE</source>
        <translation>ДОСТУПНЕ ОНОВЛЕННЯ ПРОГРАМИ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::MenuBar</name>
    <message>
        <source>SSD MANAGEMENT</source>
        <translation>КЕРУВАННЯ SSD</translation>
    </message>
    <message>
        <source>ADDITIONAL FEATURES</source>
        <translation>ДОДАТКОВІ ФУНКЦІЇ</translation>
    </message>
    <message>
        <source>DATA MIGRATION</source>
        <translation>ПЕРЕНЕСЕННЯ ДАНИХ</translation>
    </message>
    <message>
        <source>TECHNICAL SUPPORT</source>
        <translation>ТЕХНІЧНА ПІДТРИМКА</translation>
    </message>
    <message>
        <source>SETTINGS</source>
        <translation>НАЛАШТУВАННЯ</translation>
    </message>
    <message>
        <source>MY SSD</source>
        <translation>МІЙ SSD</translation>
    </message>
    <message>
        <source>SMART PARAMETERS</source>
        <translation>ПАРАМЕТРИ SMART</translation>
    </message>
    <message>
        <source>PERFORMANCE TEST</source>
        <translation>ТЕСТ ПРОДУКТИВНОСТІ</translation>
    </message>
    <message>
        <source>FIRMWARE UPDATE</source>
        <translation>ОНОВЛЕННЯ ПРОШИВКИ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::PerformanceCheckPage</name>
    <message>
        <source>%1 MB/s</source>
        <translation>%1 МБ/с</translation>
    </message>
    <message>
        <source>PERFORMANCE CHECK</source>
        <translation>ПЕРЕВІРКА ПРОДУКТИВНОСТІ</translation>
    </message>
    <message>
        <source>ELAPSED</source>
        <translation>МИНУЛО</translation>
    </message>
    <message>
        <source>REMAINING</source>
        <translation>ЗАЛИШИЛОСЯ</translation>
    </message>
    <message>
        <source>WRITE:</source>
        <translation>ЗАПИС:</translation>
    </message>
    <message>
        <source>READ:</source>
        <translation>ЧИТАННЯ:</translation>
    </message>
    <message>
        <source>0  MB/s</source>
        <translation>0 МБ/с</translation>
    </message>
    <message>
        <source>0 MB/s</source>
        <translation>0 МБ/с</translation>
    </message>
    <message>
        <source>TEST DETAILS: TEST PERFORMS CONTINIOUS WRITE AND READ OF 4MB BLOCKS</source>
        <translation>ПОДРОБИЦІ ТЕСТУ: ТЕСТ ВИКОНУЄ БЕЗПЕРЕРВНИЙ ЗАПИС І ЧИТАННЯ БЛОКІВ ПО 4 МБ</translation>
    </message>
    <message>
        <source>START</source>
        <translation>ЗАПУСТИТИ</translation>
    </message>
    <message>
        <source>%1%</source>
        <translation>%1%</translation>
    </message>
    <message>
        <source>RUNNING</source>
        <translation>ВИКОНУЄТЬСЯ</translation>
    </message>
    <message>
        <source>CANCEL</source>
        <translation>СКАСУВАТИ</translation>
    </message>
    <message>
        <source>TEST FINISHED</source>
        <translation>ТЕСТ ЗАВЕРШЕНО</translation>
    </message>
    <message>
        <source>TEST CANCELED</source>
        <translation>ТЕСТ СКАСОВАНО</translation>
    </message>
    <message>
        <source>TEST FAILED</source>
        <translation>ПОМИЛКА ТЕСТУ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::SSDStatusPage</name>
    <message>
        <source>0.00 BYTES</source>
        <translation>0.00 БАЙТІВ</translation>
    </message>
    <message>
        <source>NO DATA</source>
        <translation>НЕМАЄ ДАНИХ</translation>
    </message>
    <message>
        <source>ANALYZED: </source>
        <translation>ПРОАНАЛІЗОВАНО: </translation>
    </message>
    <message>
        <source>MY SSD</source>
        <translation>МІЙ SSD</translation>
    </message>
    <message>
        <source>SSD MODEL:</source>
        <translation>МОДЕЛЬ SSD:</translation>
    </message>
    <message>
        <source>CAPACITY:</source>
        <translation>ЄМНІСТЬ:</translation>
    </message>
    <message>
        <source>SERIAL NUMBER:</source>
        <translation>СЕРІЙНИЙ НОМЕР:</translation>
    </message>
    <message>
        <source>FIRMWARE:</source>
        <translation>ПРОШИВКА:</translation>
    </message>
    <message>
        <source>DRIVE STATUS:</source>
        <translation>СТАН ДИСКА:</translation>
    </message>
    <message>
        <source>ACTION NEEDED</source>
        <translation>ПОТРІБНІ ДІЇ</translation>
    </message>
    <message>
        <source>DETAILS</source>
        <translation>ДОКЛАДНІШЕ</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>ОК</translation>
    </message>
    <message>
        <source>GOOD</source>
        <translation>ДОБРИЙ</translation>
    </message>
    <message>
        <source>FIRMWARE STATUS:</source>
        <translation>СТАН ПРОШИВКИ:</translation>
    </message>
    <message>
        <source>UPDATE AVAILABLE</source>
        <translation>ДОСТУПНЕ ОНОВЛЕННЯ</translation>
    </message>
    <message>
        <source>UP TO DATE</source>
        <translation>АКТУАЛЬНА</translation>
    </message>
    <message>
        <source>TRIM SUPPORT:</source>
        <translation>ПІДТРИМКА TRIM:</translation>
    </message>
    <message>
        <source>AHCI SUPPORT:</source>
        <translation>ПІДТРИМКА AHCI:</translation>
    </message>
    <message>
        <source>TOTAL STORAGE:</source>
        <translation>ЗАГАЛЬНИЙ ОБСЯГ:</translation>
    </message>
    <message>
        <source>USED STORAGE:</source>
        <translation>ЗАЙНЯТО:</translation>
    </message>
    <message>
        <source>FREE STORAGE:</source>
        <translation>ВІЛЬНО:</translation>
    </message>
    <message>
        <source>ANALYZED:</source>
        <translation>ПРОАНАЛІЗОВАНО:</translation>
    </message>
    <message>
        <source>RELOAD</source>
        <translation>ОНОВИТИ</translation>
    </message>
    <message>
        <source>YES</source>
        <translation>ТАК</translation>
    </message>
    <message>
        <source>NO</source>
        <translation>НІ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::SmartParametersPage</name>
    <message>
        <source>NOT SUPPORTED</source>
        <translation>НЕ ПІДТРИМУЄТЬСЯ</translation>
    </message>
    <message>
        <source>SMART PARAMETERS</source>
        <translation>ПАРАМЕТРИ SMART</translation>
    </message>
    <message>
        <source>LIFE REMAINING:</source>
        <translation>ЗАЛИШКОВИЙ РЕСУРС:</translation>
    </message>
    <message>
        <source>TEMPERATURE:</source>
        <translation>ТЕМПЕРАТУРА:</translation>
    </message>
    <message>
        <source>POWER-ON HOURS</source>
        <translation>ГОДИНИ РОБОТИ</translation>
    </message>
    <message>
        <source>POWER CYCLES</source>
        <translation>ЦИКЛИ ВВІМКНЕННЯ</translation>
    </message>
    <message>
        <source>AVG ERASE COUNT</source>
        <translation>СЕР. КІЛЬКІСТЬ СТИРАНЬ</translation>
    </message>
    <message>
        <source>MAX ERASE COUNT</source>
        <translation>МАКС. КІЛЬКІСТЬ СТИРАНЬ</translation>
    </message>
    <message>
        <source>GB WRITTEN</source>
        <translation>ЗАПИСАНО ГБ</translation>
    </message>
    <message>
        <source>%1%</source>
        <translation>%1%</translation>
    </message>
    <message>
        <source>%1 °C</source>
        <translation>%1 °C</translation>
    </message>
    <message>
        <source>%1 GB</source>
        <translation>%1 ГБ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::SupportFormPage</name>
    <message>
        <source>FIELDS MUST CONTAIN CORRECT DATA</source>
        <translation>ПОЛЯ МАЮТЬ МІСТИТИ КОРЕКТНІ ДАНІ</translation>
    </message>
    <message>
        <source>SENDING REQUEST</source>
        <translation>НАДСИЛАННЯ ЗАПИТУ</translation>
    </message>
    <message>
        <source>SUPPORT REQUEST SENT</source>
        <translation>ЗАПИТ ДО ТЕХПІДТРИМКИ НАДІСЛАНО</translation>
    </message>
    <message>
        <source>SUPPORT REQUEST REJECTED</source>
        <translation>ЗАПИТ ДО ТЕХПІДТРИМКИ ВІДХИЛЕНО</translation>
    </message>
    <message>
        <source>UNABLE TO CONNECT TO SERVER</source>
        <translation>НЕ ВДАЄТЬСЯ ПІДКЛЮЧИТИСЯ ДО СЕРВЕРА</translation>
    </message>
    <message>
        <source>UNABLE TO COMPLETE OPERATION</source>
        <translation>НЕ ВДАЄТЬСЯ ЗАВЕРШИТИ ОПЕРАЦІЮ</translation>
    </message>
    <message>
        <source>INVALID CAPTCHA</source>
        <translation>НЕПРАВИЛЬНА CAPTCHA</translation>
    </message>
    <message>
        <source>CAPTCHA NOT AVAILABLE</source>
        <translation>CAPTCHA НЕДОСТУПНА</translation>
    </message>
    <message>
        <source>CHOOSE YOUR DRIVE</source>
        <translation>ОБЕРІТЬ ДИСК</translation>
    </message>
    <message>
        <source>CONTACT FORM</source>
        <translation>ФОРМА ЗВОРОТНОГО ЗВ’ЯЗКУ</translation>
    </message>
    <message>
        <source>YOUR TEXT</source>
        <translation>ТЕКСТ ПОВІДОМЛЕННЯ</translation>
    </message>
    <message>
        <source>YOUR SSD:</source>
        <translation>ВАШ SSD:</translation>
    </message>
    <message>
        <source>YOUR EMAIL:</source>
        <translation>ВАШ E-MAIL:</translation>
    </message>
    <message>
        <source>TYPE YOUR EMAIL</source>
        <translation>ВВЕДІТЬ ВАШ E-MAIL</translation>
    </message>
    <message>
        <source>CAPTCHA:</source>
        <translation>CAPTCHA:</translation>
    </message>
    <message>
        <source>LOADING...</source>
        <translation>ЗАВАНТАЖЕННЯ...</translation>
    </message>
    <message>
        <source>GENERATE</source>
        <translation>ЗГЕНЕРУВАТИ</translation>
    </message>
    <message>
        <source>TYPE CAPTCHA</source>
        <translation>ВВЕДІТЬ CAPTCHA</translation>
    </message>
    <message>
        <source>BY SENDING THIS FORM YOU AGREE THAT BRANTEL PROCESSES THE DATA IT CARRIES: YOUR E-MAIL ADDRESS, YOUR MESSAGE, THE SERIAL NUMBER OF THE CHOSEN DRIVE AND THE VERSION OF THIS PROGRAM. THEY ARE USED ONLY TO ANSWER YOUR REQUEST, ARE NOT PASSED ON TO THIRD PARTIES AND ARE DELETED WHEN YOUR CASE IS CLOSED. YOU MAY ASK AT ANY TIME TO SEE, CORRECT OR DELETE THEM.</source>
        <translation>НАДСИЛАЮЧИ ЦЮ ФОРМУ, ВИ ПОГОДЖУЄТЕСЯ З ТИМ, ЩО BRANTEL ОБРОБЛЯЄ ДАНІ, ЯКІ ВОНА МІСТИТЬ: ВАШУ АДРЕСУ ЕЛЕКТРОННОЇ ПОШТИ, ВАШЕ ПОВІДОМЛЕННЯ, СЕРІЙНИЙ НОМЕР ОБРАНОГО ДИСКА ТА ВЕРСІЮ ЦІЄЇ ПРОГРАМИ. ВОНИ ВИКОРИСТОВУЮТЬСЯ ЛИШЕ ДЛЯ ВІДПОВІДІ НА ВАШ ЗАПИТ, НЕ ПЕРЕДАЮТЬСЯ ТРЕТІМ ОСОБАМ І ВИДАЛЯЮТЬСЯ ПІСЛЯ ЗАКРИТТЯ ВАШОГО ЗВЕРНЕННЯ. ВИ БУДЬ-КОЛИ МОЖЕТЕ ПОПРОСИТИ ПОКАЗАТИ, ВИПРАВИТИ АБО ВИДАЛИТИ ЇХ.</translation>
    </message>
    <message>
        <source>SEND MESSAGE</source>
        <translation>НАДІСЛАТИ ПОВІДОМЛЕННЯ</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::AlertPage</name>
    <message>
        <source>DATA LOSS WARNING</source>
        <translation>ПОПЕРЕДЖЕННЯ ПРО ВТРАТУ ДАНИХ</translation>
    </message>
    <message>
        <source>WARNING:
THIS OPERATION WILL ARASE ALL DATA ON DESTINATION DISK.</source>
        <translation>УВАГА:
ЦЯ ОПЕРАЦІЯ ВИДАЛИТЬ УСІ ДАНІ НА ЦІЛЬОВОМУ ДИСКУ.</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::ErrorPage</name>
    <message>
        <source>MIGRATION FAILED</source>
        <translation>ПОМИЛКА ПЕРЕНЕСЕННЯ</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::FileSystemFilter</name>
    <message>
        <source>LOADING...</source>
        <translation>ЗАВАНТАЖЕННЯ...</translation>
    </message>
    <message>
        <source>PATH</source>
        <translation>ШЛЯХ</translation>
    </message>
    <message>
        <source>SIZE</source>
        <translation>РОЗМІР</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::FiltersPage</name>
    <message>
        <source>CHOOSE FILES TO MIGRATE</source>
        <translation>ОБЕРІТЬ ФАЙЛИ ДЛЯ ПЕРЕНЕСЕННЯ</translation>
    </message>
    <message>
        <source>CALCULATE</source>
        <translation>ОБЧИСЛИТИ</translation>
    </message>
    <message>
        <source>PLEASE WAIT FOR PARTITION SIZE ESTIMATION...</source>
        <translation>ЗАЧЕКАЙТЕ, ТРИВАЄ ОЦІНЮВАННЯ РОЗМІРУ РОЗДІЛІВ...</translation>
    </message>
    <message>
        <source>FILES AND FOLDERS</source>
        <translation>ФАЙЛИ Й ПАПКИ</translation>
    </message>
    <message>
        <source>FILE TYPES</source>
        <translation>ТИПИ ФАЙЛІВ</translation>
    </message>
    <message>
        <source>DATA TO MIGRATE:</source>
        <translation>ДАНІ ДЛЯ ПЕРЕНЕСЕННЯ:</translation>
    </message>
    <message>
        <source>UNSELECT FILES AND FOLDERS YOU WANT TO SKIP DURING MIGRATION</source>
        <translation>ЗНІМІТЬ ПОЗНАЧКУ З ФАЙЛІВ І ПАПОК, ЯКІ ПОТРІБНО ПРОПУСТИТИ ПІД ЧАС ПЕРЕНЕСЕННЯ</translation>
    </message>
    <message>
        <source>UNSELECT FILE TYPES YOU WANT TO SKIP DURING MIGRATION</source>
        <translation>ЗНІМІТЬ ПОЗНАЧКУ З ТИПІВ ФАЙЛІВ, ЯКІ ПОТРІБНО ПРОПУСТИТИ ПІД ЧАС ПЕРЕНЕСЕННЯ</translation>
    </message>
    <message>
        <source>VIDEO</source>
        <translation>ВІДЕО</translation>
    </message>
    <message>
        <source>SOUND</source>
        <translation>АУДІО</translation>
    </message>
    <message>
        <source>DOCUMENTS</source>
        <translation>ДОКУМЕНТИ</translation>
    </message>
    <message>
        <source>PICTURES</source>
        <translation>ЗОБРАЖЕННЯ</translation>
    </message>
    <message>
        <source>CALCULATING...</source>
        <translation>ОБЧИСЛЕННЯ...</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::FinishPage</name>
    <message>
        <source>MIGRATION STATUS</source>
        <translation>СТАН ПЕРЕНЕСЕННЯ</translation>
    </message>
    <message>
        <source>MIGRATION SUCCESFUL</source>
        <translation>ПЕРЕНЕСЕННЯ УСПІШНО ЗАВЕРШЕНО</translation>
    </message>
    <message>
        <source>Velmora tool has successfully migrated your operating system, but the files and directories listed below failed to copy. Despite this your system should be operational.</source>
        <translation>Програма Velmora успішно перенесла вашу операційну систему, але наведені нижче файли й папки не вдалося скопіювати. Попри це, система має працювати.</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::InitPage</name>
    <message>
        <source>CHOOSE YOUR DRIVE</source>
        <translation>ОБЕРІТЬ ДИСК</translation>
    </message>
    <message>
        <source>MIGRATE FROM</source>
        <translation>ПЕРЕНЕСТИ З</translation>
    </message>
    <message>
        <source>MIGRATE TO</source>
        <translation>ПЕРЕНЕСТИ НА</translation>
    </message>
    <message>
        <source>DRIVE:</source>
        <translation>ДИСК:</translation>
    </message>
    <message>
        <source>DRIVE STORAGE:</source>
        <translation>ОБСЯГ ДИСКА:</translation>
    </message>
    <message>
        <source>OCCUPIED SPACE:</source>
        <translation>ЗАЙНЯТО:</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::Migration</name>
    <message>
        <source>INVALID STATE</source>
        <translation>НЕПРИПУСТИМИЙ СТАН</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::MigrationController</name>
    <message>
        <source>MIGRATION WAS CANCELED</source>
        <translation>ПЕРЕНЕСЕННЯ СКАСОВАНО</translation>
    </message>
    <message>
        <source>FAILED TO CLEAN DISK ON DESTINATION DRIVE.</source>
        <translation>НЕ ВДАЛОСЯ ОЧИСТИТИ ЦІЛЬОВИЙ ДИСК.</translation>
    </message>
    <message>
        <source>FAILED TO CREATE PARTITION ON DESTINATION DRIVE (%1).</source>
        <translation>НЕ ВДАЛОСЯ СТВОРИТИ РОЗДІЛ НА ЦІЛЬОВОМУ ДИСКУ (%1).</translation>
    </message>
    <message>
        <source>FAILED TO FORMAT PARTITION ON DESTINATION DRIVE (%1).</source>
        <translation>НЕ ВДАЛОСЯ ВІДФОРМАТУВАТИ РОЗДІЛ НА ЦІЛЬОВОМУ ДИСКУ (%1).</translation>
    </message>
    <message>
        <source>FAILED TO COPY FILES (%1).</source>
        <translation>НЕ ВДАЛОСЯ СКОПІЮВАТИ ФАЙЛИ (%1).</translation>
    </message>
    <message>
        <source>FAILED TO CONFIGURE BOOT OPTIONS (%1).</source>
        <translation>НЕ ВДАЛОСЯ НАЛАШТУВАТИ ПАРАМЕТРИ ЗАВАНТАЖЕННЯ (%1).</translation>
    </message>
    <message>
        <source>SERVICE IS NOT RESPONSIVE.</source>
        <translation>СЛУЖБА НЕ ВІДПОВІДАЄ.</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::MigrationWizard</name>
    <message>
        <source>CANCEL</source>
        <translation>СКАСУВАТИ</translation>
    </message>
    <message>
        <source>BACK</source>
        <translation>НАЗАД</translation>
    </message>
    <message>
        <source>NEXT</source>
        <translation>ДАЛІ</translation>
    </message>
    <message>
        <source>START</source>
        <translation>ЗАПУСТИТИ</translation>
    </message>
    <message>
        <source>APPLY</source>
        <translation>ЗАСТОСУВАТИ</translation>
    </message>
    <message>
        <source>HOME</source>
        <translation>НА ГОЛОВНУ</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::PageBase</name>
    <message>
        <source>STEP</source>
        <translation>КРОК</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::PartitionDetailsWidget</name>
    <message>
        <source>EXCLUDE FILES...</source>
        <translation>ВИКЛЮЧИТИ ФАЙЛИ...</translation>
    </message>
    <message>
        <source>[NO LABEL]</source>
        <translation>[БЕЗ МІТКИ]</translation>
    </message>
    <message>
        <source>UPDATING USED SIZE AFTER FILTERS APPLIED</source>
        <translation>ПЕРЕРАХУНОК ЗАЙНЯТОГО МІСЦЯ З УРАХУВАННЯМ ФІЛЬТРІВ</translation>
    </message>
    <message>
        <source>DATA FITS BUT RECOMMENDED MINIMUM SIZE IS: %1</source>
        <translation>ДАНІ ВМІСТЯТЬСЯ, АЛЕ РЕКОМЕНДОВАНИЙ МІНІМАЛЬНИЙ РОЗМІР: %1</translation>
    </message>
    <message>
        <source>DATA DOES NOT FIT TO PARTITION. INCREASE PARTITION SIZE OR FILTER DATA.</source>
        <translation>ДАНІ НЕ ВМІЩУЮТЬСЯ В РОЗДІЛ. ЗБІЛЬШТЕ РОЗМІР РОЗДІЛУ АБО ВІДФІЛЬТРУЙТЕ ДАНІ.</translation>
    </message>
    <message>
        <source>RECOMMENDED SIZE: %1</source>
        <translation>РЕКОМЕНДОВАНИЙ РОЗМІР: %1</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::PartitionSizePage</name>
    <message>
        <source>PARTITIONS</source>
        <translation>РОЗДІЛИ</translation>
    </message>
    <message>
        <source>Please wait for partition size estimation...</source>
        <translation>Зачекайте, триває оцінювання розміру розділів...</translation>
    </message>
    <message>
        <source>SOURCE DRIVE</source>
        <translation>ВИХІДНИЙ ДИСК</translation>
    </message>
    <message>
        <source>PARTITIONS TO MIGRATE</source>
        <translation>РОЗДІЛИ ДЛЯ ПЕРЕНЕСЕННЯ</translation>
    </message>
    <message>
        <source>DESTINATION DRIVE</source>
        <translation>ЦІЛЬОВИЙ ДИСК</translation>
    </message>
    <message>
        <source>PARTITION</source>
        <translation>РОЗДІЛ</translation>
    </message>
    <message>
        <source>USED</source>
        <translation>ЗАЙНЯТО</translation>
    </message>
    <message>
        <source>SIZE</source>
        <translation>РОЗМІР</translation>
    </message>
    <message>
        <source>EXCLUDE FILES</source>
        <translation>ВИКЛЮЧИТИ ФАЙЛИ</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::ProgressPage</name>
    <message>
        <source>MIGRATION STATUS</source>
        <translation>СТАН ПЕРЕНЕСЕННЯ</translation>
    </message>
    <message>
        <source>MIGRATION IN PROGRESS</source>
        <translation>ТРИВАЄ ПЕРЕНЕСЕННЯ</translation>
    </message>
    <message>
        <source>REMOVING PARTITIONS...</source>
        <translation>ВИДАЛЕННЯ РОЗДІЛІВ...</translation>
    </message>
    <message>
        <source>PREPARING NEW PARTITIONS...</source>
        <translation>ПІДГОТОВКА НОВИХ РОЗДІЛІВ...</translation>
    </message>
    <message>
        <source>COPYING FILES... %1 / %2</source>
        <translation>КОПІЮВАННЯ ФАЙЛІВ... %1 / %2</translation>
    </message>
    <message>
        <source>CHANGING BOOT CONFIGURATION...</source>
        <translation>ЗМІНЕННЯ КОНФІГУРАЦІЇ ЗАВАНТАЖЕННЯ...</translation>
    </message>
</context>
<context>
    <name>Velmora::Settings::GeneralSettings</name>
    <message>
        <source>GENERAL</source>
        <translation>ЗАГАЛЬНІ</translation>
    </message>
</context>
<context>
    <name>Velmora::Settings::GeneralSettingsWidget</name>
    <message>
        <source>START ON SYSTEM STARTUP</source>
        <translation>ЗАПУСКАТИ ПІД ЧАС ЗАВАНТАЖЕННЯ СИСТЕМИ</translation>
    </message>
    <message>
        <source>ENABLE AUTOMATIC UPDATES CHECK</source>
        <translation>УВІМКНУТИ АВТОМАТИЧНУ ПЕРЕВІРКУ ОНОВЛЕНЬ</translation>
    </message>
    <message>
        <source>LANGUAGE</source>
        <translation>МОВА</translation>
    </message>
    <message>
        <source>CHANGES WILL TAKE EFFECT AFTER AN APPLICATION RESTART</source>
        <translation>ЗМІНИ НАБУДУТЬ ЧИННОСТІ ПІСЛЯ ПЕРЕЗАПУСКУ ПРОГРАМИ</translation>
    </message>
</context>
<context>
    <name>Velmora::Settings::SmartSettings</name>
    <message>
        <source>S.M.A.R.T.</source>
        <translation>S.M.A.R.T.</translation>
    </message>
    <message>
        <source>NONE</source>
        <translation>НІКОЛИ</translation>
    </message>
    <message>
        <source>EVERY 5 MINUTES</source>
        <translation>ЩО 5 ХВИЛИН</translation>
    </message>
    <message>
        <source>EVERY 10 MINUTES</source>
        <translation>ЩО 10 ХВИЛИН</translation>
    </message>
    <message>
        <source>EVERY 15 MINUTES</source>
        <translation>ЩО 15 ХВИЛИН</translation>
    </message>
    <message>
        <source>EVERY 30 MINUTES</source>
        <translation>ЩО 30 ХВИЛИН</translation>
    </message>
    <message>
        <source>EVERY HOUR</source>
        <translation>ЩОГОДИНИ</translation>
    </message>
</context>
<context>
    <name>Velmora::Settings::SmartSettingsWidget</name>
    <message>
        <source>REFRESH S.M.A.R.T. AUTOMATICALLY</source>
        <translation>АВТОМАТИЧНО ОНОВЛЮВАТИ S.M.A.R.T.</translation>
    </message>
</context>
<context>
    <name>Velmora::Settings::UpdateSettings</name>
    <message>
        <source>UPDATE</source>
        <translation>ОНОВЛЕННЯ</translation>
    </message>
</context>
<context>
    <name>Velmora::System::Drive</name>
    <message>
        <source>LOW FREE SPACE ON DRIVE %1.</source>
        <translation>МАЛО ВІЛЬНОГО МІСЦЯ НА ДИСКУ %1.</translation>
    </message>
    <message>
        <source>LOW LIFE REMAINING ON DRIVE %1.</source>
        <translation>НИЗЬКИЙ ЗАЛИШКОВИЙ РЕСУРС ДИСКА %1.</translation>
    </message>
    <message>
        <source>BAD SECTORS ON DRIVE %1.</source>
        <translation>ПОШКОДЖЕНІ СЕКТОРИ НА ДИСКУ %1.</translation>
    </message>
    <message>
        <source>DRIVE %1 COULD WORK FASTER.</source>
        <translation>ДИСК %1 МІГ БИ ПРАЦЮВАТИ ШВИДШЕ.</translation>
    </message>
</context>
<context>
    <name>Velmora::System::DriveWidget</name>
    <message>
        <source>DRIVE %1 %2 %3 %4</source>
        <translation>ДИСК %1 %2 %3 %4</translation>
    </message>
</context>
<context>
    <name>Velmora::System::FileCategories</name>
    <message>
        <source>SYSTEM</source>
        <translation>СИСТЕМА</translation>
    </message>
    <message>
        <source>PROGRAMS</source>
        <translation>ПРОГРАМИ</translation>
    </message>
    <message>
        <source>DOCUMENTS</source>
        <translation>ДОКУМЕНТИ</translation>
    </message>
    <message>
        <source>VIDEO</source>
        <translation>ВІДЕО</translation>
    </message>
    <message>
        <source>SOUND</source>
        <translation>АУДІО</translation>
    </message>
    <message>
        <source>PICTURES</source>
        <translation>ЗОБРАЖЕННЯ</translation>
    </message>
    <message>
        <source>OTHER</source>
        <translation>ІНШЕ</translation>
    </message>
</context>
<context>
    <name>Velmora::Update::UpdateSettingsWidget</name>
    <message>
        <source>APPLICATION VERSION:</source>
        <translation>ВЕРСІЯ ПРОГРАМИ:</translation>
    </message>
    <message>
        <source>AVAILABLE VERSION:</source>
        <translation>ДОСТУПНА ВЕРСІЯ:</translation>
    </message>
    <message>
        <source>SPEED:</source>
        <translation>ШВИДКІСТЬ:</translation>
    </message>
    <message>
        <source>CHECK FOR UPDATES</source>
        <translation>ПЕРЕВІРИТИ ОНОВЛЕННЯ</translation>
    </message>
    <message>
        <source>ABOUT</source>
        <translation>ПРО ПРОГРАМУ</translation>
    </message>
    <message>
        <source>%1 MB/s</source>
        <translation>%1 МБ/с</translation>
    </message>
    <message>
        <source>NO UPDATES AVAILABLE</source>
        <translation>НЕМАЄ ДОСТУПНИХ ОНОВЛЕНЬ</translation>
    </message>
    <message>
        <source>DATA NOT AVAILABLE</source>
        <translation>ДАНІ НЕДОСТУПНІ</translation>
    </message>
    <message>
        <source>DOWNLOADING UPDATE</source>
        <translation>ЗАВАНТАЖЕННЯ ОНОВЛЕННЯ</translation>
    </message>
    <message>
        <source>UPDATE FAILED, PLEASE RETRY</source>
        <translation>ПОМИЛКА ОНОВЛЕННЯ, СПРОБУЙТЕ ЩЕ РАЗ</translation>
    </message>
    <message>
        <source>COLLECTING DATA</source>
        <translation>ЗБИРАННЯ ДАНИХ</translation>
    </message>
    <message>
        <source>RESTART UPDATE DOWNLOAD</source>
        <translation>ПЕРЕЗАПУСТИТИ ЗАВАНТАЖЕННЯ ОНОВЛЕННЯ</translation>
    </message>
    <message>
        <source>UPDATE APPLICATION</source>
        <translation>ОНОВИТИ ПРОГРАМУ</translation>
    </message>
</context>
</TS>
